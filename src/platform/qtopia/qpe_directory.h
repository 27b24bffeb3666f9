#pragma once

#include <QString>

/// Where the device's directory tree is, and how it comes into being for a user.
class QpeDirectory
{
public:
    /// The tree, ending in a slash. A user's own one, below the XDG data home, is filled on first use; one that the
    /// environment variable QPEDIR names is left as it is, unless TAVEL_SKINS says where its skins are.
    static QString path();

    /// Where the skins are installed: TAVEL_SKINS, beside the program, in the build directory, or where the program was
    /// meant to be installed; empty when they are nowhere.
    static QString installed_skins();

private:
    static void fill(const QString& directory);
};
