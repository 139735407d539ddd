#include "machine/wayland/WaylandKeyPoster.h"

#include "machine/desktop/KeyPositions.h"
#include "machine/wayland/WaylandConnection.h"

#include <QCoroTimer>
#include <QPointer>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

#include <fake-input.h>
#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>
#include <virtual-keyboard-unstable-v1.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

using namespace std::chrono_literals;

namespace {

constexpr uint32_t xkbOffset = 8; // of its key codes to the kernel's
constexpr KeyChord commandV{.keyCode = 9, .flags = KeyFlags::command};
// Who holds on longer gets the keys mixed.
constexpr auto patience = 400ms;
constexpr std::chrono::milliseconds pollInterval(10);

struct Modifier
{
    quint64 flag;
    uint32_t key;
    const char *name;
};

constexpr std::array modifiers{Modifier{KeyFlags::control, KEY_LEFTCTRL, XKB_MOD_NAME_CTRL},
                               Modifier{KeyFlags::shift, KEY_LEFTSHIFT, XKB_MOD_NAME_SHIFT},
                               Modifier{KeyFlags::option, KEY_LEFTALT, XKB_MOD_NAME_ALT}};

} // namespace

/// What types: the compositor's own keyboard map, and a way to press its keys.
class WaylandKeyPoster::Keyboard
{
public:
    explicit Keyboard(WaylandConnection &connection) : m_connection(connection)
    {
        m_context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
        readKeymap();
        if (!m_keymap) {
            const xkb_rule_names plain{
                .rules = nullptr, .model = nullptr, .layout = "us", .variant = nullptr, .options = nullptr};
            m_keymap = xkb_keymap_new_from_names(m_context, &plain, XKB_KEYMAP_COMPILE_NO_FLAGS);
        }
        auto *manager =
            connection.bind<zwp_virtual_keyboard_manager_v1>(zwp_virtual_keyboard_manager_v1_interface, 1);
        if (manager && connection.seat()) {
            m_virtual = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager, connection.seat());
            giveKeymap();
        }
        if (manager)
            zwp_virtual_keyboard_manager_v1_destroy(manager);
        if (!m_virtual)
            m_fake = connection.bind<org_kde_kwin_fake_input>(org_kde_kwin_fake_input_interface, 4);
        if (m_fake)
            org_kde_kwin_fake_input_authenticate(m_fake, "Sayvane", "pastes what was said");
        connection.roundtrip();
    }
    ~Keyboard()
    {
        if (m_virtual)
            zwp_virtual_keyboard_v1_destroy(m_virtual);
        if (m_fake)
            org_kde_kwin_fake_input_destroy(m_fake);
        xkb_keymap_unref(m_keymap);
        xkb_context_unref(m_context);
    }
    Q_DISABLE_COPY_MOVE(Keyboard)

    bool isUsable() const { return m_keymap && (m_virtual || m_fake); }
    /// Whether fingers that hold a key take part in what is typed.
    bool mixesWithFingers() const { return m_fake; }

    /// Presses the key that types the symbol, with these modifiers, and lets go. False where no key types it.
    bool type(xkb_keysym_t symbol, quint64 flags)
    {
        const std::optional<Key> key = keyTyping(symbol);
        if (!key)
            return false;
        if (m_virtual) {
            zwp_virtual_keyboard_v1_modifiers(m_virtual, maskOf(flags), 0, 0, key->group);
            press(key->code, true);
            press(key->code, false);
            zwp_virtual_keyboard_v1_modifiers(m_virtual, 0, 0, 0, key->group);
        } else {
            for (const Modifier &modifier : modifiers) {
                if (flags & modifier.flag)
                    press(modifier.key, true);
            }
            press(key->code, true);
            press(key->code, false);
            for (const Modifier &modifier : modifiers) {
                if (flags & modifier.flag)
                    press(modifier.key, false);
            }
        }
        m_connection.flush();
        return true;
    }

private:
    struct Key
    {
        uint32_t code; // the kernel's
        uint32_t group;
    };

    void readKeymap()
    {
        wl_seat *seat = m_connection.seat();
        if (!seat || !m_connection.hasKeyboard())
            return;
        static constexpr wl_keyboard_listener listener{
            .keymap =
                [](void *data, wl_keyboard *, uint32_t, int32_t file, uint32_t size) {
                    auto &self = *static_cast<WaylandKeyPoster::Keyboard *>(data);
                    void *text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
                    if (text != MAP_FAILED) {
                        self.m_keymap = xkb_keymap_new_from_string(
                            self.m_context, static_cast<const char *>(text), XKB_KEYMAP_FORMAT_TEXT_V1,
                            XKB_KEYMAP_COMPILE_NO_FLAGS);
                        munmap(text, size);
                    }
                    close(file);
                },
            .enter = [](void *, wl_keyboard *, uint32_t, wl_surface *, wl_array *) {},
            .leave = [](void *, wl_keyboard *, uint32_t, wl_surface *) {},
            .key = [](void *, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t) {},
            .modifiers = [](void *, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t) {},
            .repeat_info = [](void *, wl_keyboard *, int32_t, int32_t) {}};
        wl_keyboard *keyboard = wl_seat_get_keyboard(seat);
        wl_keyboard_add_listener(keyboard, &listener, this);
        m_connection.roundtrip();
        wl_keyboard_destroy(keyboard);
    }

    void giveKeymap()
    {
        char *text = xkb_keymap_get_as_string(m_keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
        const size_t size = qstrlen(text) + 1;
        const int file = memfd_create("sayvane-keymap", MFD_CLOEXEC);
        if (file >= 0 && write(file, text, size) == ssize_t(size))
            zwp_virtual_keyboard_v1_keymap(m_virtual, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file, uint32_t(size));
        m_connection.flush();
        close(file);
        free(text);
    }

    std::optional<Key> keyTyping(xkb_keysym_t symbol) const
    {
        for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts(m_keymap); ++group) {
            for (xkb_keycode_t code = xkb_keymap_min_keycode(m_keymap);
                 code <= xkb_keymap_max_keycode(m_keymap); ++code) {
                const xkb_keysym_t *symbols = nullptr;
                const int count = xkb_keymap_key_get_syms_by_level(m_keymap, code, group, 0, &symbols);
                if (count == 1 && symbols[0] == symbol)
                    return Key{code - xkbOffset, group};
            }
        }
        return std::nullopt;
    }

    uint32_t maskOf(quint64 flags) const
    {
        uint32_t mask = 0;
        for (const Modifier &modifier : modifiers) {
            if (flags & modifier.flag)
                mask |= 1U << xkb_keymap_mod_get_index(m_keymap, modifier.name);
        }
        return mask;
    }

    void press(uint32_t key, bool isDown)
    {
        if (m_virtual)
            zwp_virtual_keyboard_v1_key(m_virtual, m_time++, key, isDown);
        else
            org_kde_kwin_fake_input_keyboard_key(m_fake, key, isDown);
    }

    WaylandConnection &m_connection;
    xkb_context *m_context = nullptr;
    xkb_keymap *m_keymap = nullptr;
    zwp_virtual_keyboard_v1 *m_virtual = nullptr;
    org_kde_kwin_fake_input *m_fake = nullptr;
    uint32_t m_time = 1; // milliseconds that only have to rise
};

WaylandKeyPoster::WaylandKeyPoster(WaylandConnection &connection, LendToPrimary lendToPrimary,
                                   Restless restless)
    : m_connection(connection),
      m_lendToPrimary(std::move(lendToPrimary)),
      m_restless(std::move(restless)),
      m_active(connection)
{
    if (connection.isOpen())
        m_keyboard = std::make_unique<Keyboard>(connection);
    if (m_keyboard && !m_keyboard->isUsable())
        m_keyboard.reset();
    connect(&connection, &WaylandConnection::lost, this, [this] { m_isLost = true; });
}

WaylandKeyPoster::~WaylandKeyPoster() = default;

void WaylandKeyPoster::prepare()
{
}

QCoro::Task<bool> WaylandKeyPoster::post(KeyChord chord, std::function<bool()> mayStill)
{
    if (!isUsable())
        co_return false;
    const QPointer self(this);
    std::chrono::milliseconds waited(0);
    while (m_keyboard->mixesWithFingers() && waited < patience) {
        const std::chrono::milliseconds wait = std::min(m_restless(), pollInterval);
        if (wait <= 0ms)
            break;
        co_await QCoro::sleepFor(wait);
        if (!self)
            co_return false;
        waited += wait;
    }
    xkb_keysym_t symbol = KeyPositions::symbol(chord.keyCode);
    quint64 flags = chord.flags;
    if (flags & KeyFlags::command)
        flags = (flags & ~KeyFlags::command) | KeyFlags::control;
    if (chord == commandV) {
        std::span<const PasteKeystroke> keystrokes = pasteKeystrokes(m_active.program());
        if (keystrokes.empty())
            keystrokes = pasteKeystrokes(false);
        const PasteKeystroke &paste = keystrokes.front();
        if (paste.pastesPrimary)
            m_lendToPrimary();
        symbol = paste.symbol;
        flags = paste.chord.flags;
    }
    co_return mayStill() && isUsable() && m_keyboard->type(symbol, flags);
}
