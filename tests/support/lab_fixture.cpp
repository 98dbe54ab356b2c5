#include "lab_fixture.h"

#include "foundation/data/amb1.h"

#include <QAction>

namespace tq::test {

int addWaiting(std::int32_t factura, int exam, const QString& examen)
{
    amb1().insert("FacturaDetalle", {"factura", "cantidad", "cod_descripcionexamen"},
                  {factura, 1, exam});
    return amb1()
        .insert("EvaluadoTemporal", {"factura", "cod_descripcionexamen", "examen"},
                {factura, exam, examen})
        .toInt();
}

void addResult(std::int32_t factura, std::int32_t numFormato, int plantilla, std::int32_t formatId,
               const QString& celda, const QString& valor)
{
    amb1().insert("resultados", {"num_factura", "NumFormato", "Cod_Plantilla", "celda",
                                 "iduniversalformato", "valor"},
                  {factura, numFormato, plantilla, celda, formatId, valor});
}

QStringList rowsOf(const QString& sql, const QVariantList& binds, const QString& separator)
{
    Recordset rs;
    rs.open(sql, binds);
    const QStringList names = rs.fieldNames();
    QStringList out;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        QStringList cells;
        for (const QString& n : names)
            cells << rs.text(n);
        out << cells.join(separator);
    }
    return out;
}

QStringList trigger(QWidget* w, const QString& action, ScriptedPrompts& sp)
{
    sp.prompts.clear();
    auto* a = control<QAction>(w, action);
    if (!a || !a->isEnabled())
        return {"<" + action + " disabled>"};
    a->trigger();
    return sp.messages();
}

QStringList texts(QListWidget* list)
{
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        out << list->item(i)->text();
    return out;
}

}  // namespace tq::test
