#include "platform/QtTranslations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace sable::QtTranslations {

bool installKorean(QCoreApplication& app)
{
    // The console speaks Korean whatever the machine's locale, and so do Qt's own texts in it.
    auto* translator = new QTranslator(&app);
    if (!translator->load(QStringLiteral("qtbase_ko"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

} // namespace sable::QtTranslations
