#include "dictation/OverlayPanel.h"
#include "overlay/FlatPanel.h"
#include "overlay/OverlayDisplay.h"
#include "overlay/OverlayLayout.h"
#include "support/VirtualClock.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFontInfo>
#include <QGuiApplication>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using OverlayLayout::Fit;

namespace {

const QString longMessage =
    u"Sayvane: the service is busy and asks for patience; nothing of what was said is lost. "_s.repeated(4).first(300);

/// How many colour values are more than rounding apart.
int differences(const QImage &left, const QImage &right)
{
    int count = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (qsizetype i = 0; i < left.bytesPerLine(); ++i)
            count += std::abs(left.constScanLine(y)[i] - right.constScanLine(y)[i]) > 12;
    }
    return count;
}

} // namespace

class OverlayTest final : public QObject
{
    Q_OBJECT

    struct Fixture
    {
        VirtualClock clock;
        FlatPanels desktop;
        OverlayPanel overlay{clock};
        OverlayDisplay display{overlay, desktop, clock};

        /// What is shown is painted when there is time.
        void show(FlowState state, const std::optional<QString> &message, OverlayTone tone)
        {
            overlay.show(state, message, tone);
            QCoreApplication::processEvents();
        }
    };

private Q_SLOTS:
    void initTestCase()
    {
        QFont font(u"DejaVu Sans"_s);
        font.setHintingPreference(QFont::PreferNoHinting);
        QGuiApplication::setFont(font);
        QCOMPARE(QFontInfo(font).family(), font.family());
    }

    void theResizeRule_data()
    {
        QTest::addColumn<FlowState>("state");
        QTest::addColumn<QSizeF>("loose");
        QTest::addColumn<QSizeF>("wrapped");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("wraps");
        const QSizeF wrapped(300, 80.2);
        QTest::newRow("recording") << FlowState::recording << QSizeF(900, 90) << wrapped << QSize(180, 36) << false;
        QTest::newRow("rounded up") << FlowState::idle << QSizeF(200.1, 36.5) << wrapped << QSize(201, 37) << false;
        QTest::newRow("just fits") << FlowState::idle << QSizeF(299.5, 30) << wrapped << QSize(300, 36) << false;
        QTest::newRow("too wide") << FlowState::idle << QSizeF(300.5, 30) << wrapped << QSize(300, 81) << true;
        QTest::newRow("no height") << FlowState::idle << QSizeF(900, 1) << wrapped << QSize(180, 36) << false;
        QTest::newRow("no wrapped width")
            << FlowState::idle << QSizeF(900, 40) << QSizeF(1, 200) << QSize(180, 36) << true;
    }

    void theResizeRule()
    {
        QFETCH(const QSizeF, loose);
        QFETCH(const QSizeF, wrapped);
        const auto fitting = [&](std::optional<double> width) { return width ? wrapped : loose; };
        QFETCH(const FlowState, state);
        QTEST(OverlayLayout::resize(state, true, 300, fitting).size, "size");
        QTEST(OverlayLayout::resize(state, true, 300, fitting).messageWidth.has_value(), "wraps");
        QCOMPARE(OverlayLayout::resize(FlowState::idle, false, 300, fitting), Fit());
    }

    void thePanelStandsLowInTheMiddle_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QRect>("screen");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("lines");
        QTest::newRow("one word") << u"OK"_s << QRect(0, 0, 1440, 900) << 180 << 1;
        QTest::newRow("300 characters") << longMessage << QRect(1920, 24, 1440, 876) << 520 << 5;
        QTest::newRow("narrow screen") << u"Copied to clipboard."_s << QRect(0, 0, 200, 800) << 180 << 2;
        QTest::newRow("lines of its own") << u"a\nb\nc"_s << QRect(0, 0, 1440, 900) << 180 << 3;
        QTest::newRow("2,000,000 characters") << u"🙂x "_s.repeated(500'000) << QRect(0, 0, 1440, 900) << 520 << 20;
    }

    void thePanelStandsLowInTheMiddle()
    {
        QFETCH(const QString, message);
        QFETCH(const QRect, screen);
        QFETCH(const int, width);
        QFETCH(const int, lines);
        Fixture f;
        f.desktop.visibleFrame = screen;
        QElapsedTimer timer;
        timer.start();
        f.show(FlowState::idle, message, OverlayTone::failure);
        QVERIFY2(timer.elapsed() < 1000, "everything waits for it");
        QCOMPARE(f.desktop.frame.width(), width);
        QCOMPARE(qRound((f.desktop.frame.height() - 18) / 16.0), lines);
        QCOMPARE(f.desktop.frame.bottom() + 36, screen.bottom());
        QVERIFY(std::abs(f.desktop.frame.center().x() - screen.center().x()) <= 1);
    }

    void barsFollowTheLevel_data()
    {
        QTest::addColumn<double>("level");
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("opacity");
        QTest::newRow("silence") << 0.0 << 3.0 << 0.55;
        QTest::newRow("below") << -4.0 << 3.0 << 0.55;
        QTest::newRow("half") << 0.5 << 11.5 << 0.775;
        QTest::newRow("above") << 7.0 << 20.0 << 1.0;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 3.0 << 0.55;
    }

    void barsFollowTheLevel()
    {
        QFETCH(const double, level);
        QFETCH(const double, height);
        QFETCH(const double, opacity);
        const OverlayLayout::Bar first = OverlayLayout::bar(0, level, 3, 3, 20);
        const OverlayLayout::Bar last = OverlayLayout::bar(23, level, 3, 3, 20);
        QCOMPARE(first.frame, QRectF(19.5, 18 - height / 2, 3, height));
        QCOMPARE(first.opacity, opacity);
        QCOMPARE(last.frame.right(), 180 - first.frame.left());
    }

    /// What moves is painted while it moves and can be seen, and never else.
    void nothingIsPaintedInVain()
    {
        Fixture f;
        f.overlay.push(0.5);
        QVERIFY(!f.desktop.content);
        f.show(FlowState::recording, {}, OverlayTone::success);
        f.overlay.push(0.5); // the same as before, one further
        f.overlay.push(0.5);
        f.clock.advance(100ms);
        const int changed = f.desktop.updates;
        QVERIFY2(changed >= 3 && changed <= 8, qPrintable(QString::number(changed)));
        f.clock.advance(10s);
        QCOMPARE(f.desktop.updates, changed);
        f.show(FlowState::processing, {}, OverlayTone::success);
        f.clock.advance(850ms);
        QVERIFY(f.desktop.updates > changed + 40);
        f.overlay.push(1); // too late to be seen
        f.overlay.hide(0s);
        QCoreApplication::processEvents();
        QVERIFY(!f.desktop.isShown);
        QCOMPARE(f.clock.pendingTimers(), 0U);

        f.desktop.reducesMotion = true;
        f.show(FlowState::recording, {}, OverlayTone::success);
        const int before = f.desktop.updates;
        f.overlay.push(0.2);
        f.show(FlowState::processing, {}, OverlayTone::success);
        QCOMPARE(f.desktop.updates, before + 1);
        QCOMPARE(f.clock.pendingTimers(), 0U);
        QCOMPARE(f.desktop.announcements,
                 QStringList({u"Listening"_s, u"Transcribing"_s, u"Listening"_s, u"Transcribing"_s}));
    }

    void levelsSlowDownTowardsTheirEnd()
    {
        LevelMotion motion;
        motion.jumpTo({0, 1});
        motion.moveTo({1, 0}, 1s);
        QCOMPARE(motion.levels(1s), QList<double>({0, 1}));
        QCOMPARE(motion.levels(1025ms), QList<double>({0.75, 0.25}));
        motion.moveTo({0, 0}, 1025ms); // from what is seen
        QCOMPARE(motion.levels(1025ms), QList<double>({0.75, 0.25}));
        QCOMPARE(motion.levels(1075ms), QList<double>({0, 0}));
        QVERIFY(!motion.isMoving(1075ms));
    }

    void itLooksLikeThis_data()
    {
        QTest::addColumn<FlowState>("state");
        QTest::addColumn<QString>("message");
        QTest::addColumn<OverlayTone>("tone");
        QTest::addColumn<QColor>("ground");
        QTest::addColumn<double>("scale");
        const QColor light(Qt::white);
        const QColor dark(38, 38, 38);
        const auto success = OverlayTone::success;
        QTest::newRow("recording") << FlowState::recording << QString() << success << light << 1.0;
        QTest::newRow("recording-2x") << FlowState::recording << QString() << success << dark << 2.0;
        QTest::newRow("processing") << FlowState::processing << QString() << success << light << 2.0;
        QTest::newRow("done") << FlowState::idle << QString() << success << dark << 1.0;
        QTest::newRow("success") << FlowState::idle << u"OK"_s << success << light << 1.0;
        QTest::newRow("warning") << FlowState::idle << u"Recording limit reached, transcribing"_s
                                 << OverlayTone::warning << dark << 1.5;
        QTest::newRow("failure") << FlowState::idle << longMessage << OverlayTone::failure << light << 1.0;
    }

    void itLooksLikeThis()
    {
        QFETCH(const FlowState, state);
        QFETCH(const QString, message);
        QFETCH(const OverlayTone, tone);
        QFETCH(const QColor, ground);
        QFETCH(const double, scale);
        Fixture f;
        f.show(state, message.isEmpty() ? std::nullopt : std::optional(message), tone);
        for (int i = -2; i < 28; ++i)
            f.overlay.push(i / 22.0);
        f.clock.advance(150ms);
        const QImage seen = f.desktop.picture(ground, scale);
        const QString file = QString::fromLatin1(QTest::currentDataTag()) + u".png"_s;
        const QString kept = QDir::temp().filePath(u"sayvane-overlay-"_s + file);
        const QImage expected = QImage(QStringLiteral(PICTURES "/") + file).convertToFormat(QImage::Format_RGB32);
        if (seen.size() == expected.size() && differences(seen, expected) < 20)
            return;
        seen.save(kept);
        QFAIL(qPrintable(u"It looks otherwise, see %1"_s.arg(kept)));
    }
};

QTEST_MAIN(OverlayTest)
#include "OverlayTest.moc"
