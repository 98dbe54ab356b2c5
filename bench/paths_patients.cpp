// The patient register and the patient pickers: opening, a search keystroke
// each way, the screens over every patient, and saving a patient.
#include "bare.h"
#include "bench.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "registers/patients/FBuscarCliente.h"
#include "registers/patients/Form30.h"
#include "registers/patients/Form5.h"
#include "registers/patients/listaclientes.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>

namespace bench {

namespace {

// The patient screen with its list loaded as on opening and after a save;
// building its widgets is not timed.
class PatientScreen : public Form5 {
public:
    qint64 reloadList()
    {
        reloadGrid();
        chooseRow(0);
        return findChild<tq::FlexGrid*>(QStringLiteral("Grid1"))->rows() - 1;
    }
    qint64 shown() const { return findChild<tq::FlexGrid*>(QStringLiteral("Grid1"))->rows() - 1; }
};

PatientScreen& patientScreen()
{
    static PatientScreen* screen = new PatientScreen;
    return *screen;
}

// One keystroke in a search box: the text before it is put without a search.
template <typename Screen>
qint64 keystroke(Screen& screen, const char* option, const QString& before, const QString& typed)
{
    screen.template findChild<QRadioButton*>(QLatin1String(option))->setChecked(true);
    auto* text1 = screen.template findChild<QLineEdit*>(QStringLiteral("Text1"));
    text1->blockSignals(true);
    text1->setText(before);
    text1->blockSignals(false);
    text1->setText(before + typed);
    return screen.template findChild<tq::FlexGrid*>(QStringLiteral("Grid1"))->rows() - 1;
}

const char* const kList =
    "SELECT Pacientes.*, seguros.Empresa AS EXPR1 FROM Pacientes, seguros "
    "WHERE Pacientes.Cod_seguro = seguros.Cod_Seguro";
const char* const kOrder = " ORDER BY nombre_paciente LIMIT 50";

// The list query and, for the first row, its insurer's name when it has one.
qint64 listFloor(Connection* db, const QString& condition = {}, const QString& pattern = {})
{
    Stmt list(db, QLatin1String(kList) + condition + QLatin1String(kOrder));
    if (!condition.isEmpty())
        list.bind(1, pattern);
    qint64 rows = 0;
    int firstInsurer = -1;
    while (list.next()) {
        for (int c = 0; c < 14; ++c)
            (void)list.columnText(c);
        if (rows++ == 0)
            firstInsurer = list.columnInt(12);
    }
    if (firstInsurer > 0)
        Stmt(db, "SELECT Empresa FROM seguros WHERE Cod_Seguro = ?").readAll(firstInsurer);
    return rows;
}

}  // namespace

void addPatientPaths(Bench& bench, const Context& c)
{
    bench.add({.name = QStringLiteral("patient list opening (Form5)"),
               .run = [] { return patientScreen().reloadList(); },
               .floor = [c] { return listFloor(c.bare); },
               .note = QStringLiteral("the list of 50 through the join with seguros and the first "
                                      "row shown, as on opening; building the widgets is not "
                                      "timed")});

    bench.add({.name = QStringLiteral("patient search by name, one keystroke (Form5)"),
               .run = [] { return keystroke(patientScreen(), "Option3", QStringLiteral("Ma"),
                                            QStringLiteral("r")); },
               .floor = [c] {
                   return listFloor(c.bare, QStringLiteral(" AND nombre_paciente LIKE ? ESCAPE '\\'"),
                                    QStringLiteral("Mar%"));
               }});

    bench.add({.name = QStringLiteral("patient search by surname, one keystroke (Form5)"),
               .run = [] { return keystroke(patientScreen(), "Option4", QStringLiteral("ue"),
                                            QStringLiteral("z")); },
               .floor = [c] {
                   return listFloor(c.bare,
                                    QStringLiteral(" AND apellido_paciente LIKE ? ESCAPE '\\'"),
                                    QStringLiteral("%uez%"));
               },
               .note = QStringLiteral("\"uez\" anywhere in the surname (Velasquez, Ordoñez)")});

    bench.add({.name = QStringLiteral("patient picker opening, every patient (FBuscarCliente)"),
               .run = [] {
                   auto* picker = new FBuscarCliente;
                   const qint64 rows =
                       picker->findChild<tq::FlexGrid*>(QStringLiteral("Grid1"))->rows() - 1;
                   delete picker;
                   return rows;
               },
               .floor = [c] {
                   return Stmt(c.bare, "SELECT cod_paciente, nombre_paciente, apellido_paciente "
                                       "FROM Pacientes ORDER BY apellido_paciente")
                       .readAll();
               },
               .target = {.ceilingMs = 300.0, .smallFloorMs = 300.0},
               .note = QStringLiteral("the whole screen made and filled with all patients; its "
                                      "target is 300 ms whatever the floor")});

    bench.add({.name = QStringLiteral("patient picker search, one keystroke (FBuscarCliente)"),
               .run = [] {
                   static FBuscarCliente* picker = new FBuscarCliente;
                   return keystroke(*picker, "Option2", QStringLiteral("Mar"), QStringLiteral("t"));
               },
               .floor = [c] {
                   Stmt s(c.bare, "SELECT cod_paciente, nombre_paciente, apellido_paciente, "
                                  "direccion_paciente FROM Pacientes "
                                  "WHERE apellido_paciente LIKE ? ESCAPE '\\' LIMIT 50");
                   return s.readAll(QStringLiteral("Mart%"));
               }});

    // The other two screens that list every patient.
    bench.add({.name = QStringLiteral("patient list opening, every patient (listaclientes)"),
               .run = [] {
                   auto* list = new listaclientes;
                   const qint64 rows =
                       list->findChild<QListWidget*>(QStringLiteral("List1"))->count();
                   delete list;
                   return rows;
               },
               .floor = [c] {
                   return Stmt(c.bare, "SELECT cod_paciente, nombre_paciente, apellido_paciente "
                                       "FROM Pacientes ORDER BY nombre_paciente")
                       .readAll();
               },
               .target = {.ceilingMs = 300.0, .smallFloorMs = 300.0},
               .note = QStringLiteral("the whole screen made and filled; held to the all-patient "
                                      "picker's 300 ms")});

    bench.add({.name = QStringLiteral("patient report chooser opening, every patient (Form30)"),
               .run = [] {
                   auto* chooser = new Form30;
                   const qint64 rows = tq::amb1().rs(QStringLiteral("rsPacientes")).recordCount();
                   delete chooser;
                   return rows;
               },
               .floor = [c] {
                   return Stmt(c.bare, "SELECT cod_paciente AS CODIGO, nombre_paciente AS "
                                       "NOMBRE, apellido_paciente AS APELLIDO FROM Pacientes "
                                       "ORDER BY nombre_paciente")
                       .readAll();
               },
               .target = {.ceilingMs = 300.0, .smallFloorMs = 300.0},
               .note = QStringLiteral("the whole screen made and filled; held to the all-patient "
                                      "picker's 300 ms")});

    // The first patient of the list is saved with the values it has, so the
    // store is the same afterwards.
    Connection* writer = openBare(c.store, false);
    bench.add({.name = QStringLiteral("saving a patient, modify (Form5)"),
               .run = [] {
                   PatientScreen& s = patientScreen();
                   s.findChild<QLineEdit*>(QStringLiteral("Text1"))->clear();
                   s.reloadList();
                   s.findChild<QAbstractButton*>(QStringLiteral("modificar"))->click();
                   s.findChild<QAbstractButton*>(QStringLiteral("guardar"))->click();
                   // The save's own message is expected; anything else fails the path.
                   Bench::promptsSeen().removeAll(
                       QStringLiteral("El paciente se modifico exitosamente"));
                   return s.shown();
               },
               .floor = [c, writer] {
                   Stmt(c.bare, "SELECT Cod_Seguro, Empresa FROM seguros ORDER BY Cod_Seguro")
                       .readAll();
                   int code = 0;
                   {
                       Stmt first(writer, QLatin1String(kList) + QLatin1String(kOrder));
                       if (first.next())
                           code = first.columnInt(0);
                   }
                   execBare(writer, "BEGIN");
                   // Each column written back onto itself, as the screen writes the shown values.
                   Stmt(writer, "UPDATE Pacientes SET nombre_paciente = nombre_paciente, "
                                "apellido_paciente = apellido_paciente, sexo = sexo, "
                                "fecha_nacimiento = fecha_nacimiento, tel_paciente = tel_paciente, "
                                "cel_paciente = cel_paciente, direccion_paciente = direccion_paciente, "
                                "correo = correo, fax_cliente = fax_cliente, asegurado = asegurado, "
                                "Cod_seguro = Cod_seguro, eadulto = eadulto WHERE cod_paciente = ?")
                       .row(code);
                   execBare(writer, "COMMIT");
                   return listFloor(c.bare);
               },
               .note = QStringLiteral("\"Modificar\" then \"Guardar\" on the first patient of the "
                                      "list, written back with its own values; then the list "
                                      "reloaded. The floor commits the same update")});
}

}  // namespace bench
