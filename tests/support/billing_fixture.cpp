#include "billing_fixture.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/flexgrid.h"

#include <QComboBox>

namespace tq::test {

void addInsurer(int code, const QString& company)
{
    amb1().execute("INSERT INTO seguros (Cod_Seguro, Empresa) VALUES (?, ?)", {code, company});
}

int addExamType(const QString& name) { return amb1().insert("TipoExamen", {"tipo_examen"}, {name}).toInt(); }

int addExam(int type, const QString& name, double price, double insured)
{
    return amb1()
        .insert("Examenes", {"cod_tipo_examen", "examen", "precio", "precioo", "tiempo_entrega"},
                {type, name, price, insured, "1 dia"})
        .toInt();
}

void addListPrice(int insurer, int exam, double price)
{
    amb1().execute("INSERT INTO RelSeguroPrecios (cod_seguro, Cod_descripcionexamen, precio) VALUES (?, ?, ?)",
                   {insurer, exam, price});
}

int addPatient(const QString& name, const QString& surname, int insurer, const QDate& birth, const QString& sex)
{
    return amb1()
        .insert("Pacientes",
                {"nombre_paciente", "apellido_paciente", "sexo", "fecha_nacimiento", "direccion_paciente",
                 "asegurado", "Cod_seguro"},
                {name, surname, sex, birth, "Col. Kennedy", insurer != 0, insurer})
        .toInt();
}

QStringList row(const QString& sql, const QVariantList& binds)
{
    Recordset rs;
    rs.open(sql, binds);
    QStringList out;
    if (rs.recordCount() == 0)
        return out;
    rs.moveFirst();
    for (const QString& f : rs.fieldNames())
        out << (rs.field(f).isNull() ? QString("NULL") : RecordsetModel::displayText(rs.field(f)));
    return out;
}

QString refusals(QWidget* w, ScriptedPrompts& sp, const QString& button, const QList<Refusal>& steps,
                 const QString& table, std::optional<Icon> icon)
{
    const auto rows = [&table] { return table.isEmpty() ? 0 : rowsIn(table); };
    const int stored = rows();
    for (const Refusal& s : steps) {
        const QStringList shown = press(w, button, sp);
        if (shown != QStringList{s.message} || w->focusWidget() != control<QWidget>(w, s.field)
            || rows() != stored || (icon && sp.prompts[0].icon != *icon))
            return s.field + ": " + shown.join(" | ");
        if (auto* combo = control<QComboBox>(w, s.field))
            pickEntry(combo, s.value);
        else
            retype(edit(w, s.field), s.value);
    }
    return {};
}

void pickPatient(QWidget* w, ScriptedPrompts& sp, const QString& name)
{
    sp.onModal("FBuscarCliente", [name](QWidget* p) {
        auto* g = control<FlexGrid>(p, "Grid1");
        clickGridRow(g, findRow(g, 1, name));
    });
    pressKey(edit(w, "clinom"), Qt::Key_Return);
}

void keyLine(QWidget* w, const QString& quantity, int code)
{
    auto* g = control<FlexGrid>(w, "Factura");
    g->setRow(g->rows() - 1);
    g->setCol(0);
    typeKeys(g, quantity);
    g->setCol(1);
    typeKeys(g, QString::number(code));
    pressKey(g, Qt::Key_Return);
}

QWidget* composed(ScriptedPrompts& sp, const QString& screen, const QString& who,
                  const QList<QPair<QString, int>>& keyed, int doctor)
{
    QWidget* w = openScreen(screen);
    pickPatient(w, sp, who);
    for (const auto& [quantity, code] : keyed)
        keyLine(w, quantity, code);
    if (doctor >= 0)
        pickEntry(control<QComboBox>(w, "Combo1"), doctor);
    clickNamed(w, "generar");
    return w;
}

}  // namespace tq::test
