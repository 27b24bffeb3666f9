#pragma once

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QImage>

#include "qpe_application.h"
#include "test_main.h"

/// A skin that a test writes: one directory below the device's pictures, gone with the object.
class SkinDirectory
{
public:
    explicit SkinDirectory(const QString& name = "tavel_video") : path_(QPEApplication::qpeDir() + "pics/" + name)
    {
        QDir(path_).removeRecursively();
        QDir().mkpath(path_);
    }
    ~SkinDirectory() { QDir(path_).removeRecursively(); }
    SkinDirectory(const SkinDirectory&) = delete;
    SkinDirectory& operator=(const SkinDirectory&) = delete;

    QString path() const { return path_; }

    void layout(const QByteArray& text) const
    {
        QFile file(path_ + "/config");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    void picture(const QString& name, const QImage& image) const { QVERIFY(image.save(path_ + "/" + name, "PNG")); }

    void plain_picture(const QString& name, const QSize& size, QRgb color) const { picture(name, plain(size, color)); }

    static QImage plain(const QSize& size, QRgb color)
    {
        QImage image(size, QImage::Format_ARGB32);
        image.fill(color);
        return image;
    }

    /// The lines of a group's button that has one picture, at a place of its own.
    static QByteArray button(const QByteArray& name, const QPoint& place, const QByteArray& picture = "button.png")
    {
        return name + "_xpos = " + QByteArray::number(place.x()) + "\n" + name +
               "_ypos = " + QByteArray::number(place.y()) + "\n" + name + "_normal = " + picture + "\n";
    }

private:
    QString path_;
};
