#pragma once

#include <QString>
#include <QStringView>

/// Makes the text of subtitle files plain. Any thread.
namespace subtitle_markup
{

/// Which tags are taken out.
enum class Tags {
    Known = 0, ///< those of SubRip; "<Hello>" stays
    All = 1,   ///< everything that looks like a tag
};

/// The text of a SubRip or WebVTT cue: no tags, codes or entities; a line break where one was written.
QString plain_cue(QStringView text, Tags tags);

/// The text of an ASS event: no override blocks, no drawings.
QString plain_event(QStringView text);

/// The text of a MicroDVD line: no codes, parted at "|".
QString plain_frame_text(QStringView text);

/// Puts an entity's character to @p text.
/// @param source what begins with "&"
/// @param strict the closing ";" must be there
/// @return how much of @p source it was; 0 when it is no entity.
qsizetype append_entity(QStringView source, bool strict, QString& text);

/// Trims each line, makes blanks of any kind plain and single, and leaves out blank lines.
QString tidy(const QString& text);

} // namespace subtitle_markup
