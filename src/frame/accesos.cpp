#include "frame/accesos.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/data/datafolder.h"
#include "frame/Form7.h"
#include "frame/MDIForm1.h"
#include "foundation/base/passwords.h"
#include "foundation/base/values.h"
#include "foundation/ui/placement.h"

#include <QDir>
#include <cstdint>
#include <optional>

namespace tq {

namespace {

QString g_storeProblem;

// Code of the last employee whose sign-on name is `usuario` (the walk has
// no early exit, so a repeated name takes the last row's code).
std::optional<std::int32_t> lastCodeOf(const QString& usuario)
{
    Recordset& rs = amb1().rs(QStringLiteral("rsempleado"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral("select cod_empleado, usuario from empleados"));
    std::optional<std::int32_t> code;
    if (rs.recordCount() > 0) {
        rs.moveFirst();
        while (!rs.eof()) {
            const QVariant name = rs.field(QStringLiteral("usuario"));
            if (!name.isNull() && name.toString() == usuario)
                code = toInt32(rs.field(QStringLiteral("cod_empleado")));
            rs.moveNext();
        }
    }
    return code;
}

// Right 1 (entry to the system) of the employee with that code.
bool hasEntryRight(std::int32_t code)
{
    Recordset& rs = amb1().rs(QStringLiteral("rsusumodu"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral("select * from Usuariosmodulos"));
    bool found = false;
    if (rs.recordCount() > 0) {
        rs.moveFirst();
        while (!rs.eof()) {
            const QVariant emp = rs.field(QStringLiteral("cod_empleado"));
            const QVariant mod = rs.field(QStringLiteral("cod_modulo"));
            if (!emp.isNull() && !mod.isNull() && toInt32(emp) == code && toInt32(mod) == 1)
                found = true;
            rs.moveNext();
        }
    }
    return found;
}

// Supplies at or below their minimum; read at every sign-on.
int countStockOuts()
{
    Recordset& rs = amb1().rs(QStringLiteral("rsRepAgotado"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral(
        "SELECT Insumos.Cod_Item, Insumos.nombre_Item, Insumos.descripcion_Item, "
        "Insumos.precio_Item, Insumos.unidad, Insumos.cminima, Insumos.stock "
        "FROM Insumos WHERE cminima >= stock ORDER BY nombre_Item"));
    return rs.recordCount();
}

bool hasLabData()
{
    Recordset& rs = amb1().rs(QStringLiteral("rsCommand5"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral("select nombre_lab, telefono_lab from datos"));
    return rs.recordCount() > 0;
}

}  // namespace

SignOnCheck checkSignOn(const QString& usuario, const QString& password)
{
    SignOnCheck c;
    if (!amb1().isOpen()) {
        c.outcome = SignOnOutcome::StoreClosed;
        return c;
    }

    const std::optional<std::int32_t> code = lastCodeOf(usuario);
    if (!code || !hasEntryRight(*code)) {
        c.outcome = SignOnOutcome::NoRights;
        return c;
    }
    c.stockOuts = countStockOuts();

    if (!hasLabData()) {
        c.outcome = SignOnOutcome::NoLabData;
        return c;
    }

    // Name and password are tried against every employee, to the end of the
    // table; only a row with that name costs a password check.
    Recordset& rs = amb1().rs(QStringLiteral("rsacceso"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral("Select usuario,password,rol from Empleados"));
    if (rs.recordCount() > 0) {
        rs.moveFirst();
        while (!rs.eof()) {
            const QVariant name = rs.field(QStringLiteral("usuario"));
            if (!name.isNull() && name.toString() == usuario
                && verifyPassword(rs.text(QStringLiteral("password")), password)) {
                ++c.matches;
                if (toInt16(rs.field(QStringLiteral("rol"))) == 2)
                    c.limited = true;
            }
            rs.moveNext();
        }
    }
    if (c.matches == 0) {
        c.outcome = SignOnOutcome::WrongPassword;
        return c;
    }
    rs.close();
    c.outcome = SignOnOutcome::Granted;
    return c;
}

QString signOnMessage(SignOnOutcome outcome)
{
    switch (outcome) {
    case SignOnOutcome::StoreClosed: return storeClosedMessage();
    case SignOnOutcome::NoRights:
        return QStringLiteral("No tiene permisos para accesar al modulo indicado");
    case SignOnOutcome::NoLabData:
        return QStringLiteral("Debe ingresar los datos del Laboratorio Primero");
    case SignOnOutcome::WrongPassword: return QStringLiteral("Usuario o contraseña incorrectos");
    case SignOnOutcome::Granted: break;
    }
    return {};
}

Icon signOnIcon(SignOnOutcome outcome)
{
    switch (outcome) {
    case SignOnOutcome::StoreClosed:
    case SignOnOutcome::NoRights: return Icon::Critical;
    default: return Icon::None;
    }
}

SignOnOutcome signOn(const QString& usuario, const QString& password)
{
    const SignOnCheck c = checkSignOn(usuario, password);
    if (c.outcome != SignOnOutcome::Granted) {
        prompts().message(signOnMessage(c.outcome), signOnIcon(c.outcome));
        return c.outcome;
    }
    state().currentUser = usuario;
    // Two rows with the same name and password reach the same main window.
    MDIForm1* main = MDIForm1::showMain();
    if (c.limited)
        main->applyLimitedRole();
    return c.outcome;
}

void setStoreProblem(const QString& detail) { g_storeProblem = detail; }

QString storeProblem() { return g_storeProblem; }

QString storeClosedMessage()
{
    const bool server = !serverConnectionText().isEmpty();
    QString text = QStringLiteral("No se puede abrir la base de datos del laboratorio.\n");
    text += !g_storeProblem.isEmpty() ? g_storeProblem
            : server                  ? QStringLiteral("El servidor no respondió.")
                                      : QDir::toNativeSeparators(storePath());
    text += server ? QStringLiteral("\nRevise el servidor y la conexión escrita en servidor.conf, "
                                    "y vuelva a iniciar el programa.")
                   : QStringLiteral("\nRevise el archivo y su carpeta, y vuelva a iniciar el "
                                    "programa.");
    return text;
}

QWidget* showSignOn()
{
    auto* w = new Form7(nullptr);
    placeWindow(w);
    w->show();
    w->raise();
    w->activateWindow();
    return w;
}

void endProgram()
{
    static bool ending = false;
    if (ending)
        return;
    ending = true;
    prompts().endProgram();
    ending = false;
}

}  // namespace tq
