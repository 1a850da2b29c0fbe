#pragma once

class QCoreApplication;

namespace sable::QtTranslations {

// Installs Qt's own Korean texts (standard buttons, file and message dialogs) beside the program's,
// which are Korean already, with the message boxes' details button worded as the console words it.
// Call before any window is made. False when Qt's translation files are not installed (Debian:
// qt6-translations-l10n); the standard texts then stay in English.
bool installKorean(QCoreApplication& app);

} // namespace sable::QtTranslations
