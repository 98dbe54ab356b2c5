#pragma once
// The grid templates of the result sheets (hematology, urinalysis, clinical
// chemistry): versioned lists of parameters. A save never touches an old
// version; it adds a whole new one, so a stored result is always shown in
// the layout it was saved with.
#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>

namespace tq {

// Codes of the templates, fixed by the fill-in screens.
enum TemplateCode : std::int32_t {
    kBlankTemplate = 1,
    kHematologia = 2,
    kUroanalisis = 3,
    kQuimica = 4,
    kParasitologia = 5,
    kBlankTemplate2 = 6,
};

// The empty line of a template: it takes a place and writes nothing. The
// only name that may stand twice in a template.
inline const QString kLineBreakParameter = QStringLiteral("_____SALTO DE LINEA_____");

struct TemplateParameter {
    std::int32_t codParametro = 0;
    QString parametro;
    std::int32_t orden = 0;
};

// The latest version of a template, or 0 when it has none. Throws DbError.
std::int32_t latestVersion(std::int32_t codPlantilla);
// The parameters of a version, in sheet order. Throws DbError.
QList<TemplateParameter> templateParameters(std::int32_t codPlantilla, std::int32_t version);

// Writes `names` (parameter names, in sheet order) as version latest + 1 of
// the template, in one transaction that holds the store for writing, so two
// editors saving at once get two versions. Each name is looked up as the
// editor always looked it up (the first parameter whose name matches). An
// empty list writes nothing. Returns the number of the version written.
// Throws DbError, having written nothing.
std::int32_t saveTemplateVersion(std::int32_t codPlantilla, const QStringList& names);

}  // namespace tq
