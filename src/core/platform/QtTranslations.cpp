#include "platform/QtTranslations.h"

#include "Messages.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace sable::QtTranslations {
namespace {

// The few of Qt's texts that the console words its own way: the button that shows a failure's
// technical text reads "자세히", as the console's messages call it.
class ConsoleWording final : public QTranslator
{
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        if (qstrcmp(context, "QMessageBox") != 0)
            return {};
        if (qstrcmp(sourceText, "Show Details...") == 0)
            return Msg::kDetailsButton;
        if (qstrcmp(sourceText, "Hide Details...") == 0)
            return Msg::kHideDetailsButton;
        return {};
    }
};

} // namespace

bool installKorean(QCoreApplication& app)
{
    // The console speaks Korean whatever the machine's locale, and so do Qt's own texts in it.
    auto* translator = new QTranslator(&app);
    if (!translator->load(QStringLiteral("qtbase_ko"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    // Installed last, so asked first.
    return QCoreApplication::installTranslator(translator)
        && QCoreApplication::installTranslator(new ConsoleWording(&app));
}

} // namespace sable::QtTranslations
