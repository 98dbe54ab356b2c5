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

namespace {

std::int32_t highestFormatId()
{
    const QVariant last = amb1().scalar(
        QStringLiteral("SELECT MAX(iduniversalformato) FROM resultados"));
    return last.isValid() && !last.isNull() ? toInt32(last) : 0;
}

}  // namespace

std::int32_t proposeFormatId() { return toInt32(double(highestFormatId()) + 1); }

TakenFormatId takeFormatId(std::int32_t proposed)
{
    const bool taken =
        amb1()
            .scalar(QStringLiteral("SELECT 1 FROM resultados WHERE iduniversalformato = ? LIMIT 1"),
                    {proposed})
            .isValid();
    if (!taken)
        return {proposed, false};
    return {toInt32(double(highestFormatId()) + 1), true};
}

std::int32_t nextNumFormato(std::int32_t factura)
{
    const QVariant last = amb1().scalar(QStringLiteral("SELECT NumFormato FROM resultados "
                                                       "WHERE num_factura = ? "
                                                       "ORDER BY diferenciador DESC LIMIT 1"),
                                        {factura});
    return last.isValid() && !last.isNull() ? toInt32(double(toInt32(last)) + 1) : 1;
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
