#include "desktop/x11/ClipboardKeeper.h"

#include "machine/x11/SelectionOwner.h"
#include "machine/x11/SelectionRead.h"
#include "machine/x11/SelectionSender.h"
#include "machine/x11/X11Connection.h"

namespace {

class Keeper : public QObject
{
public:
    Keeper()
    {
        connect(&m_connection, &X11Connection::eventReceived, this, [this](const xcb_generic_event_t *event) {
            const auto *request = reinterpret_cast<const xcb_selection_request_event_t *>(event);
            if ((event->response_type & 0x7f) == XCB_SELECTION_REQUEST && request->owner == m_window)
                save(*request);
        });
        xcb_set_selection_owner(m_connection.xcb(), m_window, m_connection.atoms()["CLIPBOARD_MANAGER"],
                                XCB_CURRENT_TIME);
        m_connection.atoms()["at work"]; // the answer comes after the change
    }

private:
    void save(const xcb_selection_request_event_t &request)
    {
        m_request = request;
        connect(&m_read, &SelectionRead::finished, this, [this] {
            m_clipboard.own(m_read.contents());
            xcb_selection_notify_event_t notify[2]{};
            notify[0] = {
                XCB_SELECTION_NOTIFY, 0, 0, m_request.time, m_request.requestor, m_request.selection, m_request.target,
                m_request.property};
            xcb_send_event(m_connection.xcb(), false, m_request.requestor, 0, reinterpret_cast<const char *>(notify));
        });
        m_read.start(std::chrono::seconds(1));
    }

    X11Connection m_connection;
    xcb_window_t m_window = m_connection.createWindow(0);
    SelectionSender m_sender{m_connection};
    SelectionOwner m_clipboard{m_connection, m_sender, "CLIPBOARD"};
    SelectionRead m_read{m_connection, m_clipboard.selection()};
    xcb_selection_request_event_t m_request{};
};

} // namespace

ClipboardKeeper::ClipboardKeeper()
{
    m_context.moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(
        &m_context,
        [this] {
            auto *keeper = new Keeper;
            QObject::connect(&m_thread, &QThread::finished, keeper, &QObject::deleteLater);
        },
        Qt::BlockingQueuedConnection);
}

ClipboardKeeper::~ClipboardKeeper()
{
    m_thread.quit();
    m_thread.wait();
}
