#include "desktop/x11/UnrulyOwner.h"
#include "machine/x11/SelectionOwner.h"
#include "machine/x11/SelectionRead.h"
#include "machine/x11/SelectionSender.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/X11Desktop.h"

#include <QCoroTask>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A clipboard manager: at the end of a program it takes over what the program had on the clipboard.
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

/// In a thread of its own, since the ending program waits for it.
class KeeperThread final : public QThread
{
public:
    KeeperThread()
    {
        start();
        m_ready.acquire();
    }
    ~KeeperThread() override
    {
        quit();
        wait();
    }

private:
    void run() override
    {
        const Keeper keeper;
        m_ready.release();
        exec();
    }

    QSemaphore m_ready;
};

} // namespace

/// The clipboard between us and other programs, good ones and bad ones.
class PasteboardTest : public QObject
{
    Q_OBJECT

    static QList<PasteboardItem> read(X11Desktop &desktop) { return QCoro::waitFor(desktop.pasteboard().items(1s)); }

    /// Of an UnrulyOwner.
    const QStringList pictures{u"image/png"_s, u"image/bmp"_s, u"image/jpeg"_s, u"image/tiff"_s};

    static QStringList types(const QList<PasteboardItem> &items)
    {
        QStringList types;
        for (const PasteboardItem &item : items) {
            for (const PasteboardData &data : item)
                types.append(data.type);
        }
        return types;
    }

    static QByteArray bytesOf(const QList<PasteboardItem> &items, const char *type)
    {
        for (const PasteboardItem &item : items) {
            for (const PasteboardData &data : item) {
                if (data.type == QLatin1String(type))
                    return data.bytes;
            }
        }
        return {};
    }

    /// What xclip gets when it asks for a format.
    static QByteArray pasted(const char *target)
    {
        QProcess xclip;
        xclip.start(u"xclip"_s, {u"-o"_s, u"-selection"_s, u"clipboard"_s, u"-t"_s, QString::fromLatin1(target)});
        QByteArray output;
        connect(&xclip, &QProcess::readyRead, &xclip, [&] { output += xclip.readAll(); });
        [[maybe_unused]] const bool ended =
            QTest::qWaitFor([&] { return xclip.state() == QProcess::NotRunning; }, 20000);
        return output + xclip.readAll();
    }

    /// Lets xclip own the clipboard from now on; it stays in the background until somebody else does.
    static void copy(const QByteArray &bytes, const char *target)
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"bytes"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        QProcess xclip;
        xclip.setStandardOutputFile(QProcess::nullDevice());
        xclip.start(u"xclip"_s,
                    {u"-i"_s, u"-selection"_s, u"clipboard"_s, u"-t"_s, QString::fromLatin1(target), file.fileName()});
        QTRY_COMPARE(xclip.state(), QProcess::NotRunning);
    }

    static QByteArray noise(qsizetype size)
    {
        QByteArray bytes(size, '\0');
        QRandomGenerator random(7);
        std::ranges::generate(bytes, [&] { return static_cast<char>(random.generate()); });
        return bytes;
    }

private Q_SLOTS:
    void textReachesOtherPrograms()
    {
        X11Desktop desktop;
        for (const QString &text : {u"👩‍👩‍👧 שלום العالم é"_s, u"Ünïcødé "_s.repeated(100000)}) {
            desktop.pasteboard().setString(text);
            for (const char *target : {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "TEXT"})
                QVERIFY2(pasted(target) == text.toUtf8(), target);
            QVERIFY(pasted("STRING") == text.toLatin1());
            QCOMPARE(pasted("x-kde-passwordManagerHint"), "secret");
            QCOMPARE(bytesOf(read(desktop), "UTF8_STRING"), text.toUtf8());
        }
    }

    void whatOthersCopiedComesBackAsItWas()
    {
        const QByteArray bytes = noise(20'000'000);
        X11Desktop desktop;
        copy(bytes, "image/png");
        const QList<PasteboardItem> items = read(desktop);
        QCOMPARE(items.size(), 1);
        QVERIFY(bytesOf(items, "image/png") == bytes);
        desktop.pasteboard().setString(u"dictated"_s);
        desktop.pasteboard().setItems(items);
        QVERIFY(pasted("image/png") == bytes);
        QVERIFY(pasted("x-kde-passwordManagerHint").isEmpty());
    }

    /// A format may come as another type, or in units of 16 bits; one of 32 bits means nothing elsewhere.
    void everyFormatIsKeptWithItsTypeAndUnit()
    {
        X11Desktop desktop;
        X11Connection connection;
        SelectionSender sender(connection);
        SelectionOwner other(connection, sender, "CLIPBOARD");
        const QList<xcb_atom_t> atoms = connection.atoms().of(
            {"text/html", "TEXT", "UTF8_STRING", "application/x-color", "PIXMAP", "text/uri-list"});
        const QByteArray html(700'000, 'h');
        const QByteArray color("\1\2\3\4\5\6\7\10", 8);
        const SelectionContents contents{{atoms[0], atoms[0], 8, html},
                                         {atoms[1], atoms[2], 8, "text"},
                                         {atoms[3], atoms[3], 16, color},
                                         {atoms[4], atoms[4], 32, QByteArray(4, '\1')},
                                         {atoms[5], atoms[5], 8, html}};
        other.own(contents);
        QTRY_VERIFY(desktop.pasteboard().changeCount() > 0);
        const QList<PasteboardItem> items = read(desktop);
        const PasteboardItem expected{
            {u"text/html"_s, html}, {u"TEXT"_s, "text"}, {u"application/x-color"_s, color}, {u"text/uri-list"_s, html}};
        QCOMPARE(items, QList<PasteboardItem>{expected});

        desktop.pasteboard().setItems(items);
        QTRY_VERIFY(!other.isOwner());
        SelectionRead back(connection, other.selection());
        bool isDone = false;
        connect(&back, &SelectionRead::finished, this, [&] { isDone = true; });
        back.start(1s);
        QTRY_VERIFY(isDone);
        const SelectionContents restored = back.contents();
        QCOMPARE(restored.size(), 4);
        QCOMPARE(restored[1].type, atoms[2]);
        QCOMPARE(restored[2].format, 16);
        QCOMPARE(restored[2].bytes, color);
        QVERIFY(restored[3].bytes == html);
    }

    void aBadOwnerCostsABoundedTime()
    {
        using Manner = UnrulyOwner::Manner;
        const QStringList good{u"UTF8_STRING"_s};
        for (const auto &[manner, kept] : {std::pair(Manner::slow, good + pictures + QStringList{u"TEXT"_s}),
                                           {Manner::silent, QStringList()},
                                           {Manner::halfSilent, good},
                                           {Manner::diesHalfway, good},
                                           {Manner::neverEnds, good},
                                           {Manner::refusesTargets, good}}) {
            X11Desktop desktop;
            const UnrulyOwner owner(manner);
            QCOMPARE(types(read(desktop)), kept); // it comes back at all
            // And nothing of it disturbs what comes next.
            desktop.pasteboard().setString(u"next"_s);
            QCOMPARE(pasted("UTF8_STRING"), "next");
        }
    }

    /// A slow owner is still at work when the clipboard changes hands.
    void nothingOfALaterOwnerIsRead()
    {
        for (const auto &[isOurs, isTheirs] : {std::pair(true, false), {true, true}, {false, true}}) {
            X11Desktop desktop;
            const UnrulyOwner owner(UnrulyOwner::Manner::slow);
            const QCoro::Task<QList<PasteboardItem>> reading = desktop.pasteboard().items(5s);
            QTRY_VERIFY(owner.isAsked());
            if (isOurs)
                desktop.pasteboard().setString(u"ours"_s);
            if (isTheirs)
                copy("theirs", "text/html");
            const QList<PasteboardItem> items = QCoro::waitFor(reading);
            QCOMPARE(types(items), isOurs ? QStringList{u"UTF8_STRING"_s} + pictures : QStringList());
            QCOMPARE(bytesOf(items, "UTF8_STRING"), isOurs ? QByteArray("good") : QByteArray());
            QTRY_COMPARE(desktop.pasteboard().isOurs(), !isTheirs);
        }
    }

    void changesOfEverybodyCountOnce()
    {
        X11Desktop desktop;
        Pasteboard &pasteboard = desktop.pasteboard();
        const qint64 start = pasteboard.changeCount();
        pasteboard.setString(u"one"_s);
        const qint64 own = pasteboard.changeCount();
        QVERIFY(own > start);
        const qint64 reads = pasteboard.readCount();
        QCOMPARE(pasted("x-kde-passwordManagerHint"), "secret");
        QCOMPARE(pasteboard.readCount(), reads);
        QCOMPARE(pasted("UTF8_STRING"), "one"); // our own notification has come by now
        QCOMPARE(pasteboard.readCount(), reads + 1);
        QCOMPARE(pasteboard.changeCount(), own);

        copy("theirs", "UTF8_STRING");
        QTRY_COMPARE(pasteboard.changeCount(), own + 1);
        pasteboard.setItems({});
        pasteboard.setItems({});
        QVERIFY(pasted("UTF8_STRING").isEmpty());
        QVERIFY(read(desktop).isEmpty());
        QCOMPARE(pasteboard.changeCount(), own + 3);
    }

    /// Somebody copies just before our own change, and we hear of it only after.
    void aChangeThatOursReplacedIsNoChange()
    {
        X11Desktop desktop;
        X11Connection connection;
        SelectionSender sender(connection);
        SelectionOwner other(connection, sender, "CLIPBOARD");
        const xcb_atom_t utf8 = connection.atoms()["UTF8_STRING"];
        other.own({{utf8, utf8, 8, "theirs"}});
        connection.atoms()["theirs stands"];
        desktop.pasteboard().setString(u"ours"_s);
        const qint64 count = desktop.pasteboard().changeCount();
        QCOMPARE(pasted("UTF8_STRING"), "ours");
        QCOMPARE(desktop.pasteboard().changeCount(), count);

        // Just after is another matter.
        desktop.pasteboard().setString(u"ours again"_s);
        desktop.connection().atoms()["ours stands"];
        other.own({{utf8, utf8, 8, "theirs again"}});
        QTRY_COMPARE(desktop.pasteboard().changeCount(), count + 2);
        QCOMPARE(bytesOf(read(desktop), "UTF8_STRING"), "theirs again");
    }

    void theClipboardIsLeftToAManagerAtTheEnd()
    {
        const KeeperThread keeper;
        const QString text = u"kept "_s.repeated(100000);
        {
            X11Desktop desktop;
            desktop.pasteboard().setString(text);
        }
        QVERIFY(pasted("UTF8_STRING") == text.toUtf8());
        QCOMPARE(pasted("x-kde-passwordManagerHint"), "secret");
    }

    void severalFormatsAreDeliveredInOneRequest()
    {
        X11Desktop desktop;
        desktop.pasteboard().setString(u"text"_s);
        X11Connection connection;
        const xcb_window_t window = connection.createWindow(0);
        const QList<xcb_atom_t> atoms =
            connection.atoms().of({"UTF8_STRING", "ONE", "image/png", "TWO", "MULTIPLE", "PAIRS", "CLIPBOARD"});
        xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, window, atoms[5], connection.atoms()["ATOM_PAIR"],
                            32, 4, atoms.constData());
        bool isAnswered = false;
        connect(&connection, &X11Connection::eventReceived, this, [&](const xcb_generic_event_t *event) {
            isAnswered |= (event->response_type & 0x7f) == XCB_SELECTION_NOTIFY;
        });
        xcb_convert_selection(connection.xcb(), window, atoms[6], atoms[4], atoms[5], XCB_CURRENT_TIME);
        connection.flush();
        QTRY_VERIFY(isAnswered);
        QCOMPARE(WindowProperty::read(connection, window, atoms[1]).bytes, "text");
        const QList<uint32_t> answered = WindowProperty::read(connection, window, atoms[5]).values();
        QCOMPARE(answered, QList<uint32_t>({atoms[0], atoms[1], atoms[2], 0}));
    }
};

QTEST_GUILESS_MAIN(PasteboardTest)
#include "PasteboardTest.moc"
