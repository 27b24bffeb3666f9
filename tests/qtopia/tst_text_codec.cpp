#include "test_main.h"
#include "text_codec.h"

#include <iconv.h>
#include <random>

/// The device's code pages: exactly the C library's where that knows a character, and nothing lost where it does not.
class TestTextCodec : public QObject
{
    Q_OBJECT

private:
    // What the C library makes of a few bytes by itself; nothing when it refuses them or leaves something out.
    static std::optional<QByteArray> converted(iconv_t descriptor, const QByteArray& input)
    {
        iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
        QByteArray bytes = input;
        char* in = bytes.data();
        auto in_left = static_cast<size_t>(bytes.size());
        char output[16];
        char* out = output;
        size_t out_left = sizeof output;
        if (iconv(descriptor, &in, &in_left, &out, &out_left) == static_cast<size_t>(-1) || in_left > 0 ||
            out == output)
            return std::nullopt;
        return QByteArray(output, out - output);
    }

    static QString character(char32_t code_point) { return QStringView(QChar::fromUcs4(code_point)).toString(); }
    static bool is_character(char32_t code_point)
    {
        return code_point < 0xD800 || (code_point > 0xDFFF && code_point <= 0x10FFFF);
    }

private slots:
    void codecs_are_known_by_their_names_data();
    void codecs_are_known_by_their_names();
    void every_code_point_encodes_as_the_c_library_does_or_is_widened();
    void every_pair_of_bytes_decodes_as_the_c_library_does();
    void every_code_point_comes_back_data();
    void every_code_point_comes_back();
    void all_hangul_syllables_are_plain_cp949();
    void text_of_all_languages_comes_back_whole();
    void all_of_euc_kr_is_read_and_syllables_it_lacks_too();
    void bytes_that_make_no_sense_become_replacement_characters_data();
    void bytes_that_make_no_sense_become_replacement_characters();
    void half_a_surrogate_pair_becomes_a_replacement_character();
    void random_bytes_do_no_harm();
    void several_threads_may_use_one_codec();
};

void TestTextCodec::codecs_are_known_by_their_names_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("known_as");
    QTest::newRow("CP949") << QByteArray("CP949") << QByteArray("CP949");
    QTest::newRow("cp949") << QByteArray("cp949") << QByteArray("CP949");
    QTest::newRow("UHC") << QByteArray("UHC") << QByteArray("CP949");
    QTest::newRow("windows-949") << QByteArray("windows-949") << QByteArray("CP949");
    QTest::newRow("eucKR") << QByteArray("eucKR") << QByteArray("eucKR");
    QTest::newRow("EUC-KR") << QByteArray("EUC-KR") << QByteArray("eucKR");
    QTest::newRow("another") << QByteArray("Shift_JIS") << QByteArray();
    QTest::newRow("empty") << QByteArray("") << QByteArray();
}

void TestTextCodec::codecs_are_known_by_their_names()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, known_as);
    const QTextCodec* const codec = QTextCodec::codecForName(name.constData());
    QCOMPARE(codec != nullptr, !known_as.isEmpty());
    if (codec)
        QCOMPARE(codec->name(), known_as);
    QVERIFY(!QTextCodec::codecForName(nullptr));
}

void TestTextCodec::every_code_point_encodes_as_the_c_library_does_or_is_widened()
{
    const QTextCodec* const codec = QTextCodec::codecForName("CP949");
    QVERIFY(codec);
    const iconv_t library = iconv_open("CP949", "UTF-8");
    QVERIFY(library != reinterpret_cast<iconv_t>(-1));
    // All characters in one text, so that neighbours matter, and what is expected of each.
    QString text;
    QByteArray expected;
    int plain = 0;
    for (char32_t code_point = 0; code_point <= 0x10FFFF; ++code_point) {
        if (!is_character(code_point))
            continue;
        text += character(code_point);
        const QByteArray utf8 = character(code_point).toUtf8();
        const auto bytes = converted(library, utf8);
        expected += bytes ? *bytes : '\xFF' + utf8;
        plain += bytes.has_value();
    }
    iconv_close(library);
    QVERIFY2(plain > 17000, qPrintable(QString::number(plain)));
    const QByteArray encoded = codec->fromUnicode(text);
    const auto difference = std::mismatch(encoded.begin(), encoded.end(), expected.begin(), expected.end());
    QVERIFY2(encoded == expected, qPrintable(QStringLiteral("from byte %1: %2 instead of %3")
                                                 .arg(difference.first - encoded.begin())
                                                 .arg(QString::fromLatin1(QByteArray(difference.first, 8).toHex()))
                                                 .arg(QString::fromLatin1(QByteArray(difference.second, 8).toHex()))));
}

void TestTextCodec::every_pair_of_bytes_decodes_as_the_c_library_does()
{
    const QTextCodec* const codec = QTextCodec::codecForName("CP949");
    const iconv_t library = iconv_open("UTF-8", "CP949");
    QVERIFY(library != reinterpret_cast<iconv_t>(-1));
    int pairs = 0;
    for (int lead = 0; lead < 0x100; ++lead) {
        const QByteArray single(1, static_cast<char>(lead));
        const auto alone = converted(library, single);
        QCOMPARE(codec->toUnicode(single),
                 alone ? QString::fromUtf8(*alone) : QString(QChar(QChar::ReplacementCharacter)));
        if (alone)
            continue;
        for (int trail = 0; trail < 0x100; ++trail) {
            const QByteArray pair = single + static_cast<char>(trail);
            const auto together = converted(library, pair);
            if (!together)
                continue;
            QCOMPARE(codec->toUnicode(pair), QString::fromUtf8(*together));
            ++pairs;
        }
    }
    iconv_close(library);
    QVERIFY2(pairs > 17000, qPrintable(QString::number(pairs)));
}

void TestTextCodec::every_code_point_comes_back_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("CP949") << QByteArray("CP949");
    QTest::newRow("eucKR") << QByteArray("eucKR");
}

void TestTextCodec::every_code_point_comes_back()
{
    QFETCH(QByteArray, name);
    const QTextCodec* const codec = QTextCodec::codecForName(name.constData());
    std::vector<char32_t> code_points;
    for (char32_t code_point = 0; code_point <= 0x10FFFF; ++code_point) {
        if (is_character(code_point))
            code_points.push_back(code_point);
    }
    std::shuffle(code_points.begin(), code_points.end(), std::mt19937(949));
    const QString text = QString::fromUcs4(code_points.data(), static_cast<qsizetype>(code_points.size()));
    QVERIFY(text.contains(QChar(0xFEFF)));
    const QString back = codec->toUnicode(codec->fromUnicode(text));
    QVERIFY(back == text);
}

void TestTextCodec::all_hangul_syllables_are_plain_cp949()
{
    const QTextCodec* const codec = QTextCodec::codecForName("CP949");
    // A converter of other origin; Qt takes it from its own libraries.
    QStringDecoder other("windows-949");
    int count = 0;
    for (char32_t syllable = 0xAC00; syllable <= 0xD7A3; ++syllable) {
        const QByteArray bytes = codec->fromUnicode(character(syllable));
        QCOMPARE(bytes.size(), 2);
        QVERIFY(!bytes.contains('\xFF'));
        if (other.isValid())
            QCOMPARE(QString(other.decode(bytes)), character(syllable));
        ++count;
    }
    QCOMPARE(count, 11172);
    QCOMPARE(codec->fromUnicode(QStringLiteral("똠방각하")), QByteArray("\x8C\x63\xB9\xE6\xB0\xA2\xC7\xCF"));
}

void TestTextCodec::text_of_all_languages_comes_back_whole()
{
    const QTextCodec* const codec = QTextCodec::codecForName("CP949");
    const QString text = QStringLiteral(
        "한국어 펲\nالعربية עברית čeština Việt 日本語 ไทย 🎬👨‍👩‍👧 "
        "\u200Fend\uFEFF");
    const QByteArray bytes = codec->fromUnicode(text);
    QCOMPARE(codec->toUnicode(bytes), text);
    // The way through the overlay text's string of bytes.
    QCOMPARE(codec->toUnicode(QString::fromLatin1(bytes).toLatin1()), text);
    QCOMPARE(codec->fromUnicode(QStringLiteral("A\u010DB")), QByteArray("A\xFF\xC4\x8D") + "B");
}

void TestTextCodec::all_of_euc_kr_is_read_and_syllables_it_lacks_too()
{
    const QTextCodec* const codec = QTextCodec::codecForName("eucKR");
    const iconv_t library = iconv_open("UTF-8", "EUC-KR");
    QVERIFY(library != reinterpret_cast<iconv_t>(-1));
    int characters = 0;
    for (int lead = 0xA1; lead < 0xFF; ++lead) {
        for (int trail = 0xA1; trail < 0xFF; ++trail) {
            const QByteArray pair = QByteArray(1, static_cast<char>(lead)) + static_cast<char>(trail);
            const auto expected = converted(library, pair);
            // The postal code mark came to EUC-KR later and is not in CP949.
            if (!expected || pair == "\xA2\xE8")
                continue;
            QCOMPARE(codec->toUnicode(pair), QString::fromUtf8(*expected));
            QCOMPARE(codec->fromUnicode(QString::fromUtf8(*expected)), pair);
            ++characters;
        }
    }
    iconv_close(library);
    QVERIFY2(characters > 8000, qPrintable(QString::number(characters)));
    QCOMPARE(codec->toUnicode("\x8C\x63"), QStringLiteral("똠"));
    QCOMPARE(codec->toUnicode(codec->fromUnicode(QStringLiteral("똠 \u010D"))), QStringLiteral("똠 \u010D"));
}

void TestTextCodec::bytes_that_make_no_sense_become_replacement_characters_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    const QString bad(QChar(QChar::ReplacementCharacter));
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("lead alone at the end") << QByteArray("a\xB0") << QStringLiteral("a") + bad;
    QTest::newRow("lead before a line break") << QByteArray("\xB0\nb") << bad + QStringLiteral("\nb");
    QTest::newRow("byte without meaning") << QByteArray("\x80z") << bad + QStringLiteral("z");
    QTest::newRow("mark at the end") << QByteArray("a\xFF") << QStringLiteral("a") + bad;
    QTest::newRow("mark before half a character") << QByteArray("\xFF\xC4\n") << bad + bad + QStringLiteral("\n");
    QTest::newRow("mark before an overlong form") << QByteArray("\xFF\xC0\x80") << bad + bad + bad;
    QTest::newRow("mark before half a pair") << QByteArray("\xFF\xED\xA0\x80").left(2) << bad + bad;
    QTest::newRow("two marks") << QByteArray("\xFF\xFF\xC4\x8D") << bad + QStringLiteral("\u010D");
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b");
}

void TestTextCodec::bytes_that_make_no_sense_become_replacement_characters()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(QTextCodec::codecForName("CP949")->toUnicode(bytes), text);
}

void TestTextCodec::half_a_surrogate_pair_becomes_a_replacement_character()
{
    const QTextCodec* const codec = QTextCodec::codecForName("CP949");
    const QString text = QStringLiteral("a") + QChar(0xD83D) + QStringLiteral("b") + QChar(0xDE00);
    const QString bad(QChar(QChar::ReplacementCharacter));
    QCOMPARE(codec->toUnicode(codec->fromUnicode(text)), QStringLiteral("a") + bad + QStringLiteral("b") + bad);
}

void TestTextCodec::random_bytes_do_no_harm()
{
    const QTextCodec* const codec = QTextCodec::codecForName("CP949");
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        QByteArray bytes;
        for (int i = 0; i < 200; ++i)
            bytes += static_cast<char>(random() % 3 == 0 ? 0xFF : random());
        const QString text = codec->toUnicode(bytes);
        QVERIFY(text.isValidUtf16());
        // What was understood is stable from then on.
        QCOMPARE(codec->toUnicode(codec->fromUnicode(text)), text);
    }
}

void TestTextCodec::several_threads_may_use_one_codec()
{
    const QTextCodec* const codec = QTextCodec::codecForName("CP949");
    const QString text = QStringLiteral("한글 똠 \u010D").repeated(500);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                wrong += codec->toUnicode(codec->fromUnicode(text)) != text;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

TAVEL_TEST_MAIN(TestTextCodec)
#include "tst_text_codec.moc"
