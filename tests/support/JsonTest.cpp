#include "base/Json.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

class JsonTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWholeNumbersOnly_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<std::optional<qint64>>("number");
        const auto none = std::optional<qint64>();
        QTest::newRow("zero") << QByteArray("0") << std::optional<qint64>(0);
        QTest::newRow("negative") << QByteArray("-30") << std::optional<qint64>(-30);
        QTest::newRow("written with a fraction") << QByteArray("12.0") << std::optional<qint64>(12);
        QTest::newRow("the largest") << QByteArray("9223372036854775807")
                                     << std::optional<qint64>(9223372036854775807);
        QTest::newRow("one more") << QByteArray("9223372036854775808") << none;
        QTest::newRow("huge") << QByteArray("1e300") << none;
        QTest::newRow("fraction") << QByteArray("12.5") << none;
        QTest::newRow("text") << QByteArray("\"12\"") << none;
        QTest::newRow("true") << QByteArray("true") << none;
        QTest::newRow("null") << QByteArray("null") << none;
    }
    void readsWholeNumbersOnly()
    {
        QFETCH(QByteArray, json);
        const QJsonDocument document = QJsonDocument::fromJson("[" + json + "]");
        QTEST(Json::wholeNumber(document[0]), "number");
    }
};

QTEST_APPLESS_MAIN(JsonTest)
#include "JsonTest.moc"
