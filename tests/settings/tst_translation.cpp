#include "test_main.h"
#include "translation.h"

#include <QtCore/QXmlStreamReader>

namespace
{

struct Message {
    QString context;
    QString source;
    QString translation;
    bool finished;
};

QList<Message> messages_of(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read.", qPrintable(path));
    QXmlStreamReader xml(&file);
    QList<Message> messages;
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            messages.append({context, xml.readElementText(), QString(), true});
        } else if (xml.name() == QLatin1String("translation")) {
            messages.last().finished = !xml.attributes().hasAttribute(QLatin1String("type"));
            messages.last().translation = xml.readElementText();
        }
    }
    if (xml.hasError())
        qFatal("%s: %s", qPrintable(path), qPrintable(xml.errorString()));
    return messages;
}

const QString translation_file = QStringLiteral(TRANSLATIONS "/tavel_video_ko.ts");

} // namespace

class TranslationTest : public QObject
{
    Q_OBJECT

private slots:
    void korean_lacks_no_text_of_the_product()
    {
        QTemporaryDir directory;
        const QString copy = directory.filePath(QStringLiteral("tavel_video_ko.ts"));
        QVERIFY(QFile::copy(translation_file, copy));
        QProcess lupdate;
        lupdate.start(QStringLiteral(LUPDATE), {"-silent", "-no-obsolete", "-locations", "none", SOURCES, "-ts", copy});
        QVERIFY(lupdate.waitForFinished(test_support::stretched(50000)));
        QVERIFY2(lupdate.exitCode() == 0, lupdate.readAllStandardError().constData());
        const QList<Message> messages = messages_of(copy);
        QVERIFY(messages.size() > 80);
        for (const Message& message : messages)
            QVERIFY2(message.finished && !message.translation.isEmpty(),
                     qPrintable(message.context + QStringLiteral(": ") + message.source));
        QCOMPARE(messages_of(translation_file).size(), messages.size());
    }

    void a_translation_keeps_what_surrounds_the_words()
    {
        const QList<Message> messages = messages_of(translation_file);
        for (const Message& message : messages) {
            QVERIFY2(message.source.count(QLatin1Char('\n')) == message.translation.count(QLatin1Char('\n')),
                     qPrintable(message.source));
            QVERIFY2(message.source.endsWith(QLatin1String(" : ")) ==
                         message.translation.endsWith(QLatin1String(" : ")),
                     qPrintable(message.source));
            QVERIFY2(message.source.startsWith(QLatin1String("[ ")) ==
                         message.translation.startsWith(QLatin1String("[ ")),
                     qPrintable(message.source));
        }
    }

    void the_locale_chooses_the_language_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<bool>("translated");
        QTest::addColumn<QString>("text");
        QTest::newRow("Korean") << "ko_KR" << true << QString::fromUtf8("표시");
        QTest::newRow("Korean elsewhere") << "ko_KP" << true << QString::fromUtf8("표시");
        QTest::newRow("English") << "en_US" << false << "Show";
        QTest::newRow("no language") << "C" << false << "Show";
        QTest::newRow("another one") << "de_DE" << false << "Show";
    }

    void the_locale_chooses_the_language()
    {
        QFETCH(QString, locale);
        QFETCH(bool, translated);
        QFETCH(QString, text);
        QCoreApplication& application = *QCoreApplication::instance();
        QCOMPARE(install_translation(application, QLocale(locale)), translated);
        QCOMPARE(QCoreApplication::translate("SettingWidget", "Show"), text);
        const auto installed = application.findChildren<QTranslator*>();
        QCOMPARE(installed.size(), translated ? 1 : 0);
        qDeleteAll(installed);
    }
};

TAVEL_TEST_MAIN(TranslationTest)
#include "tst_translation.moc"
