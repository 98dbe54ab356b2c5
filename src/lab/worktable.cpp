#include "lab/worktable.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

namespace tq {

bool cerrarExamen(std::int32_t factura, std::int32_t correlativo, std::int32_t idFormato,
                  const QString& tecnico, const QDate& today)
{
    const QVariant code = amb1().scalar(
        QStringLiteral("SELECT cod_descripcionexamen FROM EvaluadoTemporal "
                       "WHERE factura = ? AND correlativo = ?"),
        {factura, correlativo});
    if (!code.isValid() || code.isNull())
        return false;
    amb1().execute(QStringLiteral("DELETE FROM EvaluadoTemporal WHERE factura = ? AND correlativo = ?"),
                   {factura, correlativo});
    const QString row = dialect::rowIdentity(amb1().engine());
    amb1().execute(QStringLiteral("UPDATE FacturaDetalle SET evaluado = TRUE, tecnico = ?, "
                                  "iduniversalformato = ?, fecha_llenado = ? WHERE %1 = "
                                  "(SELECT MIN(%1) FROM FacturaDetalle WHERE factura = ? "
                                  "AND cod_descripcionexamen = ?)")
                       .arg(row),
                   {tecnico, idFormato, today, factura, toInt32(code)});
    return true;
}

void marcarImpresion(std::int32_t idFormato)
{
    if (idFormato <= 0)
        return;
    amb1().execute(QStringLiteral("UPDATE FacturaDetalle SET num_impresion = 1 "
                                  "WHERE iduniversalformato = ?"),
                   {idFormato});
}

}  // namespace tq
