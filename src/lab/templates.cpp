#include "lab/templates.h"

#include "foundation/base/apperror.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

namespace tq {

std::int32_t latestVersion(std::int32_t codPlantilla)
{
    const QVariant v = amb1().scalar(QStringLiteral("SELECT version FROM PlantillaParametro "
                                                    "WHERE Cod_Plantilla = ? "
                                                    "ORDER BY version DESC LIMIT 1"),
                                     {codPlantilla});
    return v.isValid() && !v.isNull() ? toInt32(v) : 0;
}

QList<TemplateParameter> templateParameters(std::int32_t codPlantilla, std::int32_t version)
{
    Recordset rs;
    rs.open(QStringLiteral(
                "SELECT PlantillaParametro.Cod_Plantilla, PlantillaParametro.cod_Parametro, "
                "parametros.Parametro, parametros.Cod_Parametro, PlantillaParametro.version, "
                "PlantillaParametro.orden FROM parametros, PlantillaParametro "
                "WHERE parametros.cod_Parametro = PlantillaParametro.cod_Parametro "
                "AND PlantillaParametro.Cod_Plantilla = ? AND PlantillaParametro.version = ? "
                "ORDER BY PlantillaParametro.orden"),
            {codPlantilla, version});
    QList<TemplateParameter> out;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        out.append({toInt32(rs.field(QStringLiteral("cod_Parametro"))),
                    rs.text(QStringLiteral("Parametro")),
                    toInt32(rs.field(QStringLiteral("orden")))});
    return out;
}

std::int32_t saveTemplateVersion(std::int32_t codPlantilla, const QStringList& names)
{
    Transaction t;
    const std::int32_t version = toInt32(double(latestVersion(codPlantilla)) + 1);
    std::int32_t orden = 0;
    for (const QString& name : names) {
        const QVariant code = amb1().scalar(
            QStringLiteral("SELECT cod_parametro FROM parametros WHERE parametro LIKE ? "
                           "ORDER BY cod_parametro LIMIT 1"),
            {name});
        if (!code.isValid() || code.isNull())
            throw AppError(QStringLiteral("El parámetro «%1» ya no existe; el formato no se "
                                          "guardó.")
                               .arg(name));
        amb1().insert(QStringLiteral("PlantillaParametro"),
                      {QStringLiteral("Cod_Plantilla"), QStringLiteral("cod_Parametro"),
                       QStringLiteral("version"), QStringLiteral("orden")},
                      {codPlantilla, toInt32(code), version, orden++});
    }
    t.commit();
    return version;
}

}  // namespace tq
