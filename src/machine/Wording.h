#pragma once

class QCoreApplication;

/// What this desktop says in the place of the texts in the source, and the language of the user where
/// somebody has translated them: the files of resources/wordings, embedded.
///
/// The source speaks of the computer that the texts were written for; `linux_en` words those that are
/// otherwise here, and `gnome_en` those that are otherwise again in a GNOME session. What they leave out is
/// said as it stands in the source.
namespace Wording {

/// For all texts that the application shows from now on. Commands and the log keep the words of the source.
void install(QCoreApplication &application);

} // namespace Wording
