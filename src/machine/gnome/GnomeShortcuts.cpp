#include "machine/gnome/GnomeShortcuts.h"

#include "machine/desktop/KeyPositions.h"
#include "machine/gnome/GnomeConsent.h"

#include <QDBusConnection>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *daemonSchema = "org.gnome.settings-daemon.plugins.media-keys";
constexpr const char *shortcutSchema = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
constexpr const char *listKey = "custom-keybindings";
const QString objectPath = u"/app/sayvane/Keys"_s;
constexpr qint64 escapeKeyCode = 53;
constexpr std::chrono::milliseconds usualRepeatDelay{500};

QString actionOf(const KeyChord &chord)
{
    return chord.keyCode == escapeKeyCode ? u"cancel"_s : u"toggle"_s;
}

QByteArray pathOf(const QString &action)
{
    return "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/sayvane-" + action.toUtf8() +
           '/';
}

/// As the toolkit writes it, such as "<Control><Super>space".
QString acceleratorOf(const KeyChord &chord)
{
    QString accelerator;
    for (const auto &[flag, name] :
         {std::pair(KeyFlags::control, u"<Control>"), std::pair(KeyFlags::option, u"<Alt>"),
          std::pair(KeyFlags::shift, u"<Shift>"), std::pair(KeyFlags::fn, u"<Super>"),
          std::pair(KeyFlags::command, u"<Mod5>")}) {
        if (chord.flags & flag)
            accelerator += QString::fromUtf16(name);
    }
    std::array<char, 64> key{};
    xkb_keysym_get_name(KeyPositions::symbol(chord.keyCode), key.data(), key.size());
    return accelerator + QString::fromLatin1(key.data());
}

/// The modifiers and the key of an accelerator, so that each has one form only.
std::pair<quint64, xkb_keysym_t> readAccelerator(QString accelerator)
{
    static const QHash<QString, quint64> modifiers{
        {u"<control>"_s, KeyFlags::control}, {u"<ctrl>"_s, KeyFlags::control},
        {u"<primary>"_s, KeyFlags::control}, {u"<alt>"_s, KeyFlags::option},
        {u"<mod1>"_s, KeyFlags::option},     {u"<shift>"_s, KeyFlags::shift},
        {u"<super>"_s, KeyFlags::fn},        {u"<mod4>"_s, KeyFlags::fn},
        {u"<mod5>"_s, KeyFlags::command}};
    quint64 flags = 0;
    for (qsizetype end = 0; accelerator.startsWith(u'<') && (end = accelerator.indexOf(u'>')) > 0;) {
        flags |= modifiers.value(accelerator.first(end + 1).toLower());
        accelerator.remove(0, end + 1);
    }
    return {flags, xkb_keysym_from_name(accelerator.toUtf8().constData(), XKB_KEYSYM_CASE_INSENSITIVE)};
}

GlibPointer<GSettings> settings(const char *schema, const char *path = nullptr)
{
    GSettingsSchema *known =
        g_settings_schema_source_lookup(g_settings_schema_source_get_default(), schema, true);
    if (!known) // to ask for one that is not there ends the program
        return nullptr;
    g_settings_schema_unref(known);
    return GlibPointer<GSettings>(path ? g_settings_new_with_path(schema, path) : g_settings_new(schema));
}

/// How long a key is held before it repeats, and a little.
std::chrono::milliseconds repeatDelay()
{
    const GlibPointer<GSettings> keyboard = settings("org.gnome.desktop.peripherals.keyboard");
    const std::chrono::milliseconds delay =
        keyboard ? std::chrono::milliseconds(g_settings_get_uint(keyboard.get(), "delay")) : usualRepeatDelay;
    return delay + std::chrono::milliseconds(100);
}

} // namespace

class GnomeShortcuts::Tap final : public KeyTap
{
public:
    Tap(GnomeShortcuts &taps, Handler handler) : m_taps(taps), m_handler(std::move(handler))
    {
        taps.m_tap = this;
    }
    ~Tap() override
    {
        m_taps.m_tap = nullptr;
        m_taps.watch({});
    }
    Q_DISABLE_COPY_MOVE(Tap)

    bool watch(std::span<const KeyChord> chords) override
    {
        m_taps.watch(chords);
        return true;
    }
    void enable() override {}

    void tell(const KeyChord &chord, bool isAutorepeat) const
    {
        m_handler({.type = KeyEventType::keyDown,
                   .keyCode = chord.keyCode,
                   .flags = chord.flags,
                   .isAutorepeat = isAutorepeat});
    }

private:
    GnomeShortcuts &m_taps;
    Handler m_handler;
};

GnomeShortcuts::GnomeShortcuts(const GnomeConsent &consent)
    : m_consent(consent),
      m_list(settings(daemonSchema))
{
}

GnomeShortcuts::~GnomeShortcuts()
{
    watch({});
}

std::unique_ptr<KeyTap> GnomeShortcuts::install(std::span<const KeyChord> chords, Handler handler)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (m_tap || !m_consent.isGiven() || !isOffered() || !bus.isConnected())
        return nullptr;
    if (!m_guard) {
        QStringList letGo;
        for (const QString &action : {u"toggle"_s, u"cancel"_s})
            letGo.append(u"gsettings set %1:%2 binding ''"_s.arg(QString::fromLatin1(shortcutSchema),
                                                                 QString::fromUtf8(pathOf(action))));
        m_guard = std::make_unique<Guard>(letGo.join(u"; "_s));
        bus.registerObject(objectPath, this, QDBusConnection::ExportScriptableInvokables);
    }
    auto tap = std::make_unique<Tap>(*this, std::move(handler));
    watch(chords);
    return tap;
}

QString GnomeShortcuts::holderOf(const KeyChord &chord)
{
    const auto wanted = std::pair(chord.flags & KeyFlags::compared, KeyPositions::symbol(chord.keyCode));
    const auto has = [&](GVariant *value) {
        QStringList bindings;
        if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING))
            bindings.append(QString::fromUtf8(g_variant_get_string(value, nullptr)));
        for (gsize i = 0;
             g_variant_is_of_type(value, G_VARIANT_TYPE_STRING_ARRAY) && i < g_variant_n_children(value);
             ++i) {
            const gchar *binding = nullptr;
            g_variant_get_child(value, i, "&s", &binding);
            bindings.append(QString::fromUtf8(binding));
        }
        g_variant_unref(value);
        return std::ranges::find(bindings, wanted, readAccelerator) != bindings.end();
    };
    for (const char *schema :
         {"org.gnome.desktop.wm.keybindings", "org.gnome.shell.keybindings", "org.gnome.mutter.keybindings",
          "org.gnome.mutter.wayland.keybindings", daemonSchema}) {
        const GlibPointer<GSettings> group = settings(schema);
        if (!group)
            continue;
        GSettingsSchema *known = nullptr;
        g_object_get(group.get(), "settings-schema", &known, nullptr);
        gchar **names = g_settings_schema_list_keys(known);
        QString holder;
        for (gchar **name = names; *name && holder.isEmpty(); ++name) {
            if (!has(g_settings_get_value(group.get(), *name)))
                continue;
            GSettingsSchemaKey *found = g_settings_schema_get_key(known, *name);
            const gchar *summary = g_settings_schema_key_get_summary(found);
            holder = QString::fromUtf8(summary ? summary : *name);
            g_settings_schema_key_unref(found);
        }
        g_strfreev(names);
        g_settings_schema_unref(known);
        if (!holder.isEmpty())
            return holder;
    }
    const GlibPointer<GSettings> daemon = settings(daemonSchema);
    gchar **paths = daemon ? g_settings_get_strv(daemon.get(), listKey) : nullptr;
    QString holder;
    for (gchar **path = paths; path && *path && holder.isEmpty(); ++path) {
        if (*path == pathOf(u"toggle"_s) || *path == pathOf(u"cancel"_s))
            continue;
        const GlibPointer<GSettings> entry = settings(shortcutSchema, *path);
        if (has(g_settings_get_value(entry.get(), "binding"))) {
            gchar *name = g_settings_get_string(entry.get(), "name");
            holder = QString::fromUtf8(*name ? name : *path);
            g_free(name);
        }
    }
    g_strfreev(paths);
    return holder;
}

bool GnomeShortcuts::remove()
{
    if (!isOffered())
        return false;
    bool wasThere = false;
    for (const QString &action : {u"toggle"_s, u"cancel"_s}) {
        const GlibPointer<GSettings> entry = settings(shortcutSchema, pathOf(action).constData());
        for (const char *key : {"name", "command", "binding"}) {
            if (GVariant *written = g_settings_get_user_value(entry.get(), key)) {
                g_variant_unref(written);
                g_settings_reset(entry.get(), key);
                wasThere = true;
            }
        }
        list(action, false);
    }
    g_settings_sync();
    return wasThere;
}

void GnomeShortcuts::watch(std::span<const KeyChord> chords)
{
    QList<Entry> wanted;
    for (const KeyChord &chord : chords) {
        const QString action = actionOf(chord);
        if (std::ranges::find(wanted, action, &Entry::action) == wanted.end())
            wanted.append({.action = action, .chord = chord, .lastTold = {}});
    }
    for (const Entry &entry : std::as_const(m_entries)) {
        if (std::ranges::find(wanted, entry.action, &Entry::action) == wanted.end()) {
            write(entry.action, QString());
            list(entry.action, !wanted.isEmpty()); // one that comes and goes only loses its keys
        }
    }
    for (Entry &entry : wanted) {
        const auto it = std::ranges::find(m_entries, entry.action, &Entry::action);
        if (it != m_entries.end() && it->chord == entry.chord) {
            entry.lastTold = it->lastTold;
            continue;
        }
        write(entry.action, acceleratorOf(entry.chord));
        list(entry.action, true);
    }
    m_entries = wanted;
}

void GnomeShortcuts::write(const QString &action, const QString &binding)
{
    const GlibPointer<GSettings> entry = settings(shortcutSchema, pathOf(action).constData());
    if (!entry)
        return;
    const QString command =
        u"gdbus call --session --dest %1 --object-path %2 --method app.sayvane.Keys1.Pressed %3"_s.arg(
            QDBusConnection::sessionBus().baseService(), objectPath, action);
    g_settings_set_string(entry.get(), "name",
                          action == u"cancel"_s ? "Sayvane: cancel" : "Sayvane: start or stop");
    g_settings_set_string(entry.get(), "command", command.toUtf8().constData());
    g_settings_set_string(entry.get(), "binding", binding.toUtf8().constData());
}

/// What others have listed stays.
void GnomeShortcuts::list(const QString &action, bool isListed)
{
    const QByteArray path = pathOf(action);
    gchar **known = g_settings_get_strv(m_list.get(), listKey);
    QByteArrayList paths;
    for (gchar **each = known; *each; ++each)
        paths.append(*each);
    g_strfreev(known);
    if (paths.contains(path) == isListed)
        return;
    if (isListed)
        paths.append(path);
    else
        paths.removeAll(path);
    QList<const gchar *> all;
    for (const QByteArray &each : std::as_const(paths))
        all.append(each.constData());
    all.append(nullptr);
    g_settings_set_strv(m_list.get(), listKey, all.constData());
}

void GnomeShortcuts::Pressed(const QString &action)
{
    const auto it = std::ranges::find(m_entries, action, &Entry::action);
    if (!m_tap || it == m_entries.end())
        return;
    const auto now = std::chrono::steady_clock::now();
    const bool isAutorepeat = now - std::exchange(it->lastTold, now) < repeatDelay();
    m_tap->tell(it->chord, isAutorepeat);
}
