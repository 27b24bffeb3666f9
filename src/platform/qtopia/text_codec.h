#pragma once

#include <QByteArray>
#include <QString>

/// The device's code pages, widened so that no character is lost.
///
/// A character that the code page lacks travels as the byte 0xFF, which the code page never uses, followed by its UTF-8
/// bytes; plain text of the code page is unchanged. "eucKR" reads and writes CP949, too, which holds all of EUC-KR in
/// the same places and has the syllables that EUC-KR lacks. Both directions know this. May be used on any thread.
class QTextCodec
{
public:
    /// The codec for "CP949" (also "UHC", "windows-949") or "eucKR" (also "EUC-KR"), in any case of letters; null for
    /// others. Codecs live as long as the process.
    static QTextCodec* codecForName(const char* name);

    /// Bytes that make no sense become U+FFFD.
    QString toUnicode(const QByteArray& bytes) const;
    /// Half of a surrogate pair becomes U+FFFD.
    QByteArray fromUnicode(const QString& text) const;

    QByteArray name() const { return QByteArray(name_); }

private:
    explicit QTextCodec(const char* name);

    const char* name_;
};
