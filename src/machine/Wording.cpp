#include "machine/Wording.h"

#include "machine/gnome/GnomeKeyTaps.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

void add(QCoreApplication &application, std::unique_ptr<QTranslator> translator, bool isLoaded)
{
    if (isLoaded && application.installTranslator(translator.get()))
        translator.release()->setParent(&application);
}

} // namespace

void Wording::install(QCoreApplication &application)
{
    const QString folder = u":/wordings"_s;
    auto here = std::make_unique<QTranslator>();
    const bool isThere = here->load(u"linux_en"_s, folder);
    Q_ASSERT(isThere);
    add(application, std::move(here), isThere);
    if (GnomeKeyTaps::isGnome()) {
        auto gnome = std::make_unique<QTranslator>();
        const bool isWorded = gnome->load(u"gnome_en"_s, folder);
        add(application, std::move(gnome), isWorded);
    }
    // Whoever is installed last is asked first.
    auto language = std::make_unique<QTranslator>();
    const bool isTranslated = language->load(QLocale(), u"sayvane"_s, u"_"_s, folder);
    add(application, std::move(language), isTranslated);
}
