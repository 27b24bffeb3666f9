#pragma once

#include <QtGui/QPixmap>

/// Pictures of the settings dialog.
namespace setting_pictures
{

/// A picture of the player's skin by its name without suffix; null when the skin does not have it.
QPixmap skin(const QString& name);

} // namespace setting_pictures
