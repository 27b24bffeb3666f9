#include "qpe_application.h"
#include "qpe_directory.h"
#include "test_main.h"

/// Where the device's directory tree is.
class TestQpeDirectory : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> home_;

    QString own_directory() const { return home_->filePath(QStringLiteral("tavel_video/qpe/")); }
    QString make_skins(const QString& name)
    {
        const QString path = home_->filePath(name);
        QDir().mkpath(path + QStringLiteral("/tavel_video"));
        return QDir(path).canonicalPath();
    }

private slots:
    void init()
    {
        home_ = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", home_->path().toUtf8());
        qunsetenv("QPEDIR");
        qunsetenv("TAVEL_SKINS");
    }

    void the_environment_names_the_directory_and_it_is_left_as_it_is_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::newRow("without slash") << QString();
        QTest::newRow("with slash") << QStringLiteral("/");
    }

    void the_environment_names_the_directory_and_it_is_left_as_it_is()
    {
        QFETCH(QString, suffix);
        const QString path = home_->filePath(QStringLiteral("device 가"));
        qputenv("QPEDIR", (path + suffix).toUtf8());
        QCOMPARE(QPEApplication::qpeDir(), path + QStringLiteral("/"));
        QVERIFY(!QFileInfo::exists(path));
    }

    void a_users_own_directory_is_filled_on_first_use()
    {
        const QString skins = make_skins(QStringLiteral("skins"));
        qputenv("TAVEL_SKINS", skins.toUtf8());
        QCOMPARE(QPEApplication::qpeDir(), own_directory());
        QVERIFY(QFileInfo(own_directory() + QStringLiteral("etc")).isDir());
        QVERIFY(QFileInfo(own_directory() + QStringLiteral("bin")).isDir());
        QCOMPARE(QFileInfo(own_directory() + QStringLiteral("pics")).symLinkTarget(), skins);
        QVERIFY(QFileInfo(own_directory() + QStringLiteral("pics/tavel_video")).isDir());
    }

    void an_environment_with_skins_fills_the_directory_it_names()
    {
        const QString path = home_->filePath(QStringLiteral("device/"));
        const QString skins = make_skins(QStringLiteral("skins"));
        qputenv("QPEDIR", path.toUtf8());
        qputenv("TAVEL_SKINS", skins.toUtf8());
        QCOMPARE(QPEApplication::qpeDir(), path);
        QCOMPARE(QFileInfo(path + QStringLiteral("pics")).symLinkTarget(), skins);
    }

    void skins_that_moved_are_linked_anew()
    {
        QVERIFY(QDir().mkpath(own_directory()));
        QVERIFY(QFile::link(home_->filePath(QStringLiteral("gone")), own_directory() + QStringLiteral("pics")));
        const QString skins = make_skins(QStringLiteral("skins"));
        qputenv("TAVEL_SKINS", skins.toUtf8());
        QCOMPARE(QPEApplication::qpeDir(), own_directory());
        QCOMPARE(QFileInfo(own_directory() + QStringLiteral("pics")).symLinkTarget(), skins);
    }

    void a_users_own_pictures_stay()
    {
        QVERIFY(QDir().mkpath(own_directory() + QStringLiteral("pics/tavel_video")));
        qputenv("TAVEL_SKINS", make_skins(QStringLiteral("skins")).toUtf8());
        QCOMPARE(QPEApplication::qpeDir(), own_directory());
        const QFileInfo info(own_directory() + QStringLiteral("pics"));
        QVERIFY(info.isDir());
        QVERIFY(!info.isSymLink());
    }

    void a_directory_that_cannot_be_made_is_said()
    {
        QFile in_the_way(home_->filePath(QStringLiteral("tavel_video")));
        QVERIFY(in_the_way.open(QIODevice::WriteOnly));
        qputenv("TAVEL_SKINS", make_skins(QStringLiteral("skins")).toUtf8());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("etc: cannot be made")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("bin: cannot be made")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("pics: cannot be linked")));
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QCOMPARE(QPEApplication::qpeDir(), own_directory());
        QCOMPARE(QPEApplication::qpeDir(), own_directory());
    }

    void the_skins_named_by_the_environment_come_first()
    {
        const QString skins = make_skins(QStringLiteral("skins"));
        qputenv("TAVEL_SKINS", skins.toUtf8());
        QCOMPARE(QpeDirectory::installed_skins(), skins);
        qputenv("TAVEL_SKINS", home_->filePath(QStringLiteral("none")).toUtf8());
        QVERIFY(QpeDirectory::installed_skins() != home_->filePath(QStringLiteral("none")));
    }
};

TAVEL_TEST_MAIN(TestQpeDirectory)
#include "tst_qpe_directory.moc"
