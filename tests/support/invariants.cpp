#include "invariants.h"

#include "foundation/base/apperror.h"
#include "foundation/data/amb1.h"

namespace tq::test {

namespace {

// A column holding a whole number, never null, text or a fraction.
QString notWhole(const QString& column)
{
    return QStringLiteral("(%1 IS NULL OR %1 <> CAST(%1 AS INTEGER))").arg(column);
}

// A name and the SELECT COUNT(*) of the rows breaking it.
struct Invariant {
    QString name;
    QString sql;
};

const QList<Invariant>& storeInvariants()
{
    static const QList<Invariant> list = [] {
        QList<Invariant> out = {
            {QStringLiteral("usuariosmodulos: pares de números enteros"),
             QStringLiteral("SELECT COUNT(*) FROM usuariosmodulos WHERE %1 OR %2")
                 .arg(notWhole(QStringLiteral("cod_empleado")), notWhole(QStringLiteral("cod_modulo")))},
            // Every employee gets the module rights when added, in the same save.
            {QStringLiteral("Empleados: cada empleado con sus derechos de módulo"),
             QStringLiteral("SELECT COUNT(*) FROM Empleados e WHERE NOT EXISTS (SELECT 1 FROM "
                            "usuariosmodulos m WHERE m.cod_empleado = e.cod_empleado)")},
            // Billing: an invoice is saved whole or not at all.
            {QStringLiteral("Factura: cada factura con sus líneas"),
             QStringLiteral("SELECT COUNT(*) FROM Factura f WHERE NOT EXISTS (SELECT 1 FROM FacturaDetalle d "
                            "WHERE d.factura = f.factura)")},
            // Paid in full at the desk, the abono is the total; on credit,
            // until a later instalment, it is what was paid at the desk. A
            // credit invoice paid off later (instalments, the insurer) stays
            // on credit.
            {QStringLiteral("Factura: abono según la forma de pago"),
             QStringLiteral("SELECT COUNT(*) FROM Factura f WHERE "
                            "(pagada AND NOT COALESCE(credito, FALSE) AND ABS(Abono - total) > 0.005) "
                            "OR (credito AND ABS(Abono - (efectivo + tarjeta + cheque)) > 0.005 "
                            "AND (SELECT COUNT(*) FROM creditos c WHERE c.factura = f.factura) <= 1)")},
            // A credit invoice's abono is what its instalments add up to.
            {QStringLiteral("Factura: abono de una factura al crédito igual a sus cuotas"),
             QStringLiteral("SELECT COUNT(*) FROM Factura f WHERE f.credito AND ABS(f.Abono - "
                            "(SELECT COALESCE(SUM(c.abono), 0) FROM creditos c WHERE c.factura = f.factura)) "
                            "> 0.005")},
            // An insurer's settlement marks the invoice paid in the same save.
            {QStringLiteral("cxc: ninguna cuenta saldada sin su factura pagada"),
             QStringLiteral("SELECT COUNT(*) FROM cxc x WHERE x.estado AND NOT EXISTS (SELECT 1 FROM Factura f "
                            "WHERE f.factura = x.factura AND f.pagada)")},
            // An order is saved whole; one billed names an invoice that exists and is closed.
            {QStringLiteral("orden: cada orden con sus líneas"),
             QStringLiteral("SELECT COUNT(*) FROM orden o WHERE NOT EXISTS (SELECT 1 FROM ordenDetalle d "
                            "WHERE d.orden = o.orden)")},
            {QStringLiteral("orden: facturada en una factura que existe, y cerrada"),
             QStringLiteral("SELECT COUNT(*) FROM orden o WHERE o.factura IS NOT NULL AND (NOT o.anulada "
                            "OR NOT EXISTS (SELECT 1 FROM Factura f WHERE f.factura = o.factura))")},
            {QStringLiteral("resultados: ninguna celda sin su factura"),
             QStringLiteral("SELECT COUNT(*) FROM resultados r WHERE NOT EXISTS (SELECT 1 FROM Factura f "
                            "WHERE f.factura = r.num_factura)")},
            // A sheet's row belongs to a sheet of a known format.
            {QStringLiteral("resultados: ninguna celda sin su formato"),
             QStringLiteral("SELECT COUNT(*) FROM resultados r WHERE r.NumFormato IS NULL "
                            "OR NOT EXISTS (SELECT 1 FROM Plantilla p "
                            "WHERE p.Cod_Plantilla = r.Cod_Plantilla)")},
            // A correction keeps what the sheet said before it: every line of
            // the log it wrote has its earlier cells, and no earlier cell
            // stands without its line.
            {QStringLiteral("historialcambios: cada corrección con sus celdas anteriores"),
             QStringLiteral("SELECT COUNT(*) FROM historialcambios h WHERE h.cod_cambio IS NOT NULL "
                            "AND NOT EXISTS (SELECT 1 FROM celdasanteriores a "
                            "WHERE a.cod_cambio = h.cod_cambio)")},
            {QStringLiteral("celdasanteriores: ninguna celda sin su corrección"),
             QStringLiteral("SELECT COUNT(*) FROM celdasanteriores a WHERE NOT EXISTS "
                            "(SELECT 1 FROM historialcambios h WHERE h.cod_cambio = a.cod_cambio)")},
        };
        // The registers and the other master tables keep whole codes.
        for (const char* keyed : {"Empleados cod_empleado", "Doctores Cod_doctor", "Pacientes cod_paciente",
                                  "Examenes cod_descripcionexamen", "TipoExamen cod_tipo_examen",
                                  "seguros Cod_Seguro", "parametros cod_parametro", "Plantilla Cod_Plantilla",
                                  "Insumos Cod_Item", "proveedor prvcod"}) {
            const QStringList tk = QString::fromLatin1(keyed).split(QLatin1Char(' '));
            out.append({tk[0] + QStringLiteral(" sin código vacío"),
                        QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2").arg(tk[0], notWhole(tk[1]))});
        }
        // A row of an invoice's table whose invoice is not there.
        for (const char* table : {"FacturaDetalle", "cxc", "creditos", "Datostarjeta", "EvaluadoTemporal"})
            out.append({QStringLiteral("%1: ninguna fila sin su factura").arg(QLatin1String(table)),
                        QStringLiteral("SELECT COUNT(*) FROM %1 t WHERE NOT EXISTS (SELECT 1 FROM Factura f "
                                       "WHERE f.factura = t.factura)").arg(QLatin1String(table))});
        return out;
    }();
    return list;
}

}  // namespace

QStringList brokenInvariants()
{
    QStringList broken;
    try {
        // The embedded store's file checks itself; the server keeps its own.
        if (amb1().engine() == Engine::Embedded) {
            const QString integrity = amb1().scalar(QStringLiteral("PRAGMA integrity_check")).toString();
            if (integrity != QLatin1String("ok"))
                broken << QStringLiteral("integrity_check: %1").arg(integrity);
        }
        for (const Invariant& inv : storeInvariants())
            if (const int rows = amb1().scalar(inv.sql).toInt(); rows != 0)
                broken << QStringLiteral("%1: %2 filas").arg(inv.name).arg(rows);
    } catch (const AppError& e) {
        broken << QStringLiteral("no se pudo revisar la base de datos: %1").arg(e.message());
    }
    return broken;
}

}  // namespace tq::test
