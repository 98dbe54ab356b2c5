// Start-up, sign-on, the employee list, and the two report sources that the
// invoice print and the day's cash cut read.
#include "bare.h"
#include "bench.h"

#include "foundation/base/passwords.h"
#include "foundation/data/amb1.h"
#include "frame/accesos.h"
#include "foundation/ui/datagrid.h"
#include "administration/users/Form1.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <sodium.h>

namespace bench {

namespace {

// The employee screen as it stands; its list is loaded again after every
// save, through the same code that loads it on opening.
class EmployeeScreen : public Form1 {
public:
    qint64 reloadList()
    {
        loadGrid();
        return dataGrid()->rows();
    }
    qint64 shown() const { return dataGrid()->rows(); }
};

EmployeeScreen& employeeScreen()
{
    static EmployeeScreen* screen = new EmployeeScreen;
    return *screen;
}

// The employees that a run of the path below added, by their sign-on names;
// each run takes away those of the runs before, on either side.
const char* const kAdded = "bancoalta%";
const char* const kTakeAwayRights =
    "DELETE FROM usuariosmodulos WHERE cod_empleado IN "
    "(SELECT cod_empleado FROM Empleados WHERE usuario LIKE ?)";
const char* const kTakeAway = "DELETE FROM Empleados WHERE usuario LIKE ?";


// Reads a row's fields as a print-out does.
void readFields(const tq::Recordset& rs, const QStringList& names)
{
    for (const QString& n : names)
        (void)rs.field(n);
}

const QStringList kInvoiceHeader = {
    QStringLiteral("factura"),   QStringLiteral("fecha"),
    QStringLiteral("nombre"),    QStringLiteral("direccion_paciente"),
    QStringLiteral("sub_total"), QStringLiteral("adicional"),
    QStringLiteral("valadicional"), QStringLiteral("total"),
    QStringLiteral("abono"),     QStringLiteral("deuda"),
    QStringLiteral("faturado"),  QStringLiteral("anulada")};
const QStringList kInvoiceLine = {QStringLiteral("cantidad"), QStringLiteral("examen"),
                                  QStringLiteral("precio"), QStringLiteral("subtotal")};
const QStringList kCutRow = {QStringLiteral("factura"),  QStringLiteral("nombre"),
                             QStringLiteral("total"),    QStringLiteral("efectivo"),
                             QStringLiteral("tarjeta"),  QStringLiteral("cheque"),
                             QStringLiteral("faturado"), QStringLiteral("tipo_factura")};

}  // namespace

void addFoundationPaths(Bench& bench, const Context& c)
{
    bench.add({.name = QStringLiteral("start-up to sign-on (tarvenquil --tiempo-inicio)"),
               .run = [c] {
                   return timeToWindow(c.program, {QStringLiteral("--data"), c.dataFolder,
                                                   QStringLiteral("--tiempo-inicio")});
               },
               .floor = [c] {
                   return timeToWindow(c.bareWindow, {QStringLiteral("--tiempo-inicio")});
               },
               .target = Target::startUp(),
               .note = QStringLiteral("whole processes under QT_QPA_PLATFORM=offscreen, from "
                                      "launch until the window is exposed; floor: a bare Qt "
                                      "window with two fields and a button"),
               .wholeProcess = true});

    // The sign-on screen goes up while the store opens beside it; this is
    // the time until the store is open and the laboratory's name is shown.
    bench.add({.name = QStringLiteral("start-up to the store open (tarvenquil --tiempo-listo)"),
               .run = [c] {
                   return timeToWindow(c.program, {QStringLiteral("--data"), c.dataFolder,
                                                   QStringLiteral("--tiempo-listo")});
               },
               .floor = [c] {
                   return timeToWindow(c.bareWindow, {QStringLiteral("--tiempo-inicio")});
               },
               .target = {.ratio = 1e9},
               .note = QStringLiteral("as above, until the store is open and the sign-on screen "
                                      "shows the laboratory's name; only the ceiling counts, "
                                      "the floor is the bare window's"),
               .wholeProcess = true});

    // Both sides pay one Argon2id verification of the stored hash (about
    // 10 ms): the cost is deliberate, and the floor keeps it.
    bench.add({.name = QStringLiteral("sign-on check (checkSignOn)"),
               .run = [c] {
                   return qint64(tq::checkSignOn(c.user, c.password).outcome
                                 == tq::SignOnOutcome::Granted);
               },
               .floor = [c] {
                   Stmt code(c.bare, "SELECT cod_empleado FROM Empleados WHERE usuario = ?");
                   code.bind(1, c.user);
                   int employee = -1;
                   while (code.next())
                       employee = code.columnInt(0);
                   Stmt right(c.bare, "SELECT cod_modulo FROM usuariosmodulos "
                                      "WHERE cod_empleado = ? AND cod_modulo = 1");
                   if (right.readAll(employee) == 0)
                       return qint64(0);
                   Stmt(c.bare, "SELECT Cod_Item, nombre_Item, descripcion_Item, precio_Item, "
                                "unidad, cminima, stock FROM Insumos WHERE cminima >= stock "
                                "ORDER BY nombre_Item")
                       .readAll();
                   Stmt(c.bare, "SELECT nombre_lab, telefono_lab FROM datos").readAll();
                   Stmt pass(c.bare, "SELECT Password, rol FROM Empleados WHERE usuario = ?");
                   pass.bind(1, c.user);
                   const QByteArray typed = c.password.toUtf8();
                   qint64 granted = 0;
                   while (pass.next()) {
                       const QByteArray hash = pass.columnText(0).toLatin1();
                       granted |= crypto_pwhash_str_verify(hash.constData(), typed.constData(),
                                                           typed.size())
                                  == 0;
                   }
                   return granted;
               },
               .note = QStringLiteral("both sides verify the typed password against its Argon2id "
                                      "hash once (about 10 ms, on purpose); each counts 1 when "
                                      "access is granted")});

    bench.add({.name = QStringLiteral("employee list (Form1)"),
               .run = [] { return employeeScreen().reloadList(); },
               .floor = [c] { return Stmt(c.bare, "SELECT * FROM Empleados").readAll(); },
               .note = QStringLiteral("the list as the screen loads it on opening and after every "
                                      "save; building the screen's widgets is not timed")});

    // A new employee among the fifty, as the screen adds one: its sign-on
    // name held against every stored password (fifty Argon2id checks, the
    // name being nobody's), the new hash, the employee and its rights, the
    // list again.
    Connection* writer = openBare(c.store, false);
    bench.add({.name = QStringLiteral("adding an employee among 50 (Form1)"),
               .run = [] {
                   static int runs = 0;
                   const QString added = QString::fromLatin1(kAdded);
                   tq::amb1().execute(QString::fromLatin1(kTakeAwayRights), {added});
                   tq::amb1().execute(QString::fromLatin1(kTakeAway), {added});
                   EmployeeScreen& s = employeeScreen();
                   s.findChild<QAbstractButton*>(QStringLiteral("Command1"))->click();
                   const auto type = [&s](const char* field, const QString& text) {
                       s.findChild<QLineEdit*>(QLatin1String(field))->setText(text);
                   };
                   type("Text1", QStringLiteral("Marta"));
                   type("Text2", QStringLiteral("Zelaya Pineda"));
                   type("Text3", QStringLiteral("Col. Kennedy, Tegucigalpa"));
                   type("Text6", QStringLiteral("15/03/2024"));
                   type("Text7", QStringLiteral("bancoaltap%1").arg(++runs));
                   s.findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(1);
                   s.findChild<QAbstractButton*>(QStringLiteral("Command5"))->click();
                   return s.shown();
               },
               .floor = [c, writer] {
                   static int runs = 0;
                   execBare(writer, "BEGIN");
                   Stmt(writer, kTakeAwayRights).row(kAdded);
                   Stmt(writer, kTakeAway).row(kAdded);
                   execBare(writer, "COMMIT");
                   const QString name = QStringLiteral("bancoaltab%1").arg(++runs);
                   const QByteArray typed = name.toUtf8();
                   bool taken = false;
                   Stmt stored(writer, "SELECT password FROM Empleados");
                   while (stored.next()) {
                       const QByteArray hash = stored.columnText(0).toLatin1();
                       taken |= crypto_pwhash_str_verify(hash.constData(), typed.constData(),
                                                         typed.size())
                                == 0;
                   }
                   if (taken)
                       return qint64(-1);
                   char hash[crypto_pwhash_STRBYTES];
                   if (crypto_pwhash_str_alg(hash, typed.constData(), typed.size(),
                                             tq::kHashPasses, tq::kHashMemory,
                                             crypto_pwhash_ALG_ARGON2ID13)
                       != 0)
                       return qint64(-1);
                   execBare(writer, "BEGIN");
                   Stmt(writer, "INSERT INTO Empleados (nombre_empleado, apellido_empleado, "
                                "direccion_empleado, tel_empleado, cel_empleado, "
                                "fecha_nacimiento, rol, usuario, Password) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
                       .row("Marta", "Zelaya Pineda", "Col. Kennedy, Tegucigalpa", null, null,
                            QDate(2024, 3, 15), 2, name, QString::fromLatin1(hash));
                   for (int module = 1; module <= 3; ++module)
                       Stmt(writer, "INSERT INTO usuariosmodulos (cod_modulo, cod_empleado) "
                                    "SELECT ?, cod_empleado FROM Empleados WHERE usuario = ?")
                           .row(module, name);
                   execBare(writer, "COMMIT");
                   return Stmt(c.bare, "SELECT * FROM Empleados").readAll();
               },
               .target = {.ratio = 3.0, .ceilingMs = 1000.0},
               .note = QStringLiteral("the name is checked against the fifty stored hashes: the "
                                      "program spreads the checks over the machine's cores, the "
                                      "floor makes them one after another; the ceiling is the "
                                      "second that adding an employee may take"),
               .after = [writer] {
                   Stmt(writer, kTakeAwayRights).row(kAdded);
                   Stmt(writer, kTakeAway).row(kAdded);
               }});

    // The invoice print: the invoice's fields, then its lines.
    const QString invoiceSql = narrowedSource(QStringLiteral("rsrfact1"), QString(),
                                              QStringLiteral("Factura.factura = ?"));
    const QString linesSql = narrowedSource(QStringLiteral("rsrfact1"), QStringLiteral("Command1"),
                                            QStringLiteral("FacturaDetalle.factura = ?"));
    bench.add({.name = QStringLiteral("rsrfact1, one invoice"),
               .run = [c] {
                   tq::Recordset& rs = openFiltered(QStringLiteral("rsrfact1"),
                                                    QStringLiteral("factura = %1").arg(c.invoice));
                   qint64 seen = 0;
                   for (rs.moveFirst(); !rs.eof(); rs.moveNext(), ++seen) {
                       readFields(rs, kInvoiceHeader);
                       tq::Recordset lines = rs.child(QStringLiteral("Command1"));
                       for (lines.moveFirst(); !lines.eof(); lines.moveNext(), ++seen)
                           readFields(lines, kInvoiceLine);
                   }
                   return seen;
               },
               .floor = [c, invoiceSql, linesSql] {
                   return Stmt(c.bare, invoiceSql).readAll(c.invoice)
                          + Stmt(c.bare, linesSql).readAll(c.invoice);
               }});

    // The day's cash cut: its groups by voided state and their invoices.
    const QString daySql = narrowedSource(QStringLiteral("rsrcorte_Grouping"), QString(),
                                          QStringLiteral("Factura.fecha = ?"));
    bench.add({.name = QStringLiteral("rsrcorte_Grouping, one day"),
               .run = [c] {
                   const QString day = c.cutDay.toString(QStringLiteral("dd/MM/yyyy"));
                   tq::Recordset& rs = openFiltered(QStringLiteral("rsrcorte_Grouping"),
                                                    QStringLiteral("fecha = ") + day);
                   qint64 seen = 0;
                   for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
                       readFields(rs, {QStringLiteral("fecha"), QStringLiteral("anulada")});
                       tq::Recordset rows = rs.child(QStringLiteral("rcorte"));
                       for (rows.moveFirst(); !rows.eof(); rows.moveNext(), ++seen)
                           readFields(rows, kCutRow);
                   }
                   return seen;
               },
               .floor = [c, daySql] { return Stmt(c.bare, daySql).readAll(c.cutDay); }});
}

// A report source as the screens open it before showing its report: closed
// if open, opened, narrowed by the screen's filter.
tq::Recordset& openFiltered(const QString& command, const QString& filter)
{
    tq::Recordset& rs = tq::amb1().rs(command);
    if (rs.isOpen())
        rs.close();
    rs.open();
    rs.setFilter(filter);
    return rs;
}

}  // namespace bench
