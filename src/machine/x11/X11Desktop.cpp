#include "machine/x11/X11Desktop.h"

X11Desktop::X11Desktop(const QByteArray &display)
    : m_connection(display),
      m_keyboard(m_connection),
      m_trust(m_connection, m_keyboard),
      m_pasteboard(display),
      m_keyTaps(display, m_trust),
      m_keyPoster(m_connection, m_keyboard, m_pasteboard, m_keyTaps, m_trust)
{
}
