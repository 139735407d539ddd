#include "machine/x11/X11Pasteboard.h"

#include "machine/x11/SelectionRead.h"

#include <QCoroFuture>
#include <QCoroSignal>
#include <QPointer>
#include <QPromise>

using namespace std::chrono_literals;

namespace {

// How long the end of the program may wait for a clipboard manager.
constexpr auto handoverLimit = 500ms;
// A paste waits for the owner of PRIMARY.
constexpr auto primaryLimit = 300ms;

xcb_window_t ownerOf(const X11Connection &connection, xcb_atom_t selection)
{
    const auto cookie = xcb_get_selection_owner(connection.xcb(), selection);
    const auto reply = adopt(xcb_get_selection_owner_reply(connection.xcb(), cookie, nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
}

QCoro::Task<> lend(X11Pasteboard &pasteboard, std::shared_ptr<QPromise<void>> promise)
{
    QCoro::Task<void> lending = pasteboard.lendToPrimary();
    co_await lending;
    promise->finish();
}

} // namespace

X11Pasteboard::X11Pasteboard(const QByteArray &display)
    : m_connection(display),
      m_sender(m_connection),
      m_clipboard(m_connection, m_sender, "CLIPBOARD"),
      m_primary(m_connection, m_sender, "PRIMARY")
{
    for (const SelectionOwner *selection : {&m_clipboard, &m_primary}) {
        const auto tellReads = [this, selection](uint32_t request, xcb_window_t owner) {
            for (const auto &read : m_reads) {
                if (read->selection() == selection->selection())
                    read->changedHands(request, owner);
            }
        };
        connect(selection, &SelectionOwner::changedHands, this, tellReads);
    }
}

X11Pasteboard::~X11Pasteboard()
{
    if (m_clipboard.isOwner())
        leaveToClipboardManager();
}

QCoro::Task<QList<PasteboardItem>> X11Pasteboard::items(std::chrono::milliseconds limit)
{
    const QPointer self(this);
    const SelectionContents contents = co_await contentsOf(m_clipboard, limit);
    if (!self || contents.isEmpty())
        co_return QList<PasteboardItem>{};
    QList<xcb_atom_t> targets;
    for (const SelectionData &data : contents)
        targets.append(data.target);
    const QList<QByteArray> names = m_connection.atoms().names(targets);
    PasteboardItem item;
    for (qsizetype i = 0; i < contents.size(); ++i) {
        m_shapes.insert(contents[i].target, {contents[i].type, contents[i].format});
        item.append({QString::fromUtf8(names[i]), contents[i].bytes});
    }
    QList<PasteboardItem> result;
    result.append(item);
    co_return result;
}

void X11Pasteboard::setPlainText(const QString &text)
{
    X11Atoms &atoms = m_connection.atoms();
    const QByteArray utf8 = text.toUtf8();
    const xcb_atom_t utf8String = atoms["UTF8_STRING"];
    SelectionContents contents;
    contents.append({utf8String, utf8String, 8, utf8});
    for (const char *name : {"text/plain;charset=utf-8", "text/plain"})
        contents.append({atoms[name], atoms[name], 8, utf8});
    contents.append({atoms["TEXT"], utf8String, 8, utf8});
    contents.append({XCB_ATOM_STRING, XCB_ATOM_STRING, 8, text.toLatin1()});
    const xcb_atom_t hint = atoms["x-kde-passwordManagerHint"];
    contents.append({hint, hint, 8, "secret"});
    replace(std::move(contents));
}

void X11Pasteboard::setItems(const QList<PasteboardItem> &items)
{
    QList<PasteboardData> formats;
    QList<QByteArray> names;
    for (const PasteboardItem &item : items) {
        for (const PasteboardData &data : item) {
            if (names.contains(data.type.toUtf8()))
                continue;
            formats.append(data);
            names.append(data.type.toUtf8());
        }
    }
    const QList<xcb_atom_t> targets = m_connection.atoms().of(names);
    SelectionContents contents;
    for (qsizetype i = 0; i < formats.size(); ++i) {
        const Shape shape = m_shapes.value(targets[i], {targets[i], 8});
        contents.append({targets[i], shape.type, shape.format, formats[i].bytes});
    }
    replace(std::move(contents));
}

QCoro::Task<void> X11Pasteboard::lendToPrimary()
{
    const QPointer self(this);
    if (!m_borrowedPrimary) {
        SelectionContents before = co_await contentsOf(m_primary, primaryLimit);
        if (!self)
            co_return;
        m_borrowedPrimary = std::move(before);
    }
    SelectionContents contents = co_await contentsOf(m_clipboard, primaryLimit);
    if (self)
        m_primary.own(std::move(contents));
}

QCoro::Task<SelectionContents> X11Pasteboard::contentsOf(SelectionOwner &selection,
                                                         std::chrono::milliseconds limit)
{
    if (selection.isOwner())
        co_return selection.contents();
    const QPointer self(this);
    SelectionRead *read =
        m_reads.emplace_back(std::make_unique<SelectionRead>(m_connection, selection.selection())).get();
    read->start(limit);
    co_await qCoro(read, &SelectionRead::finished);
    if (!self)
        co_return SelectionContents{};
    const SelectionContents contents = read->contents();
    std::erase_if(m_reads, [&](const auto &candidate) { return candidate.get() == read; });
    co_return contents;
}

void X11Pasteboard::replace(SelectionContents contents)
{
    for (const auto &read : m_reads) {
        if (read->selection() == m_clipboard.selection())
            read->askNoMore();
    }
    m_clipboard.own(std::move(contents));
    if (m_borrowedPrimary && m_primary.isOwner())
        m_primary.own(*m_borrowedPrimary);
    m_borrowedPrimary.reset();
}

void X11Pasteboard::leaveToClipboardManager()
{
    const xcb_atom_t manager = m_connection.atoms()["CLIPBOARD_MANAGER"];
    if (ownerOf(m_connection, manager) == XCB_WINDOW_NONE)
        return;
    bool isAnswered = false;
    connect(&m_connection, &X11Connection::eventReceived, this, [&](const xcb_generic_event_t *event) {
        const auto *notify = reinterpret_cast<const xcb_selection_notify_event_t *>(event);
        if ((event->response_type & 0x7f) == XCB_SELECTION_NOTIFY && notify->selection == manager)
            isAnswered = true;
    });
    const xcb_atom_t saveTargets = m_connection.atoms()["SAVE_TARGETS"];
    xcb_convert_selection(m_connection.xcb(), m_clipboard.window(), manager, saveTargets, saveTargets,
                          XCB_CURRENT_TIME);
    m_connection.dispatchUntil([&] { return isAnswered && m_sender.isIdle(); }, handoverLimit);
}

X11PasteboardThread::X11PasteboardThread(const QByteArray &display)
    : PasteboardThread([&display] { return std::make_unique<X11Pasteboard>(display); })
{
}

QCoro::Task<void> X11PasteboardThread::lendToPrimary()
{
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    const QFuture<void> future = promise->future();
    there([promise](Pasteboard &pasteboard) { lend(static_cast<X11Pasteboard &>(pasteboard), promise); });
    co_await future;
}
