// Password change, the administrator prompts and the database backup.
#include "testsupport.h"

#include "foundation/amb1.h"
#include "foundation/appstate.h"
#include "foundation/values.h"
#include "maintenance/backup.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace tq;
using namespace tq::test;

namespace {

int addEmployee(const QString& usuario, const QString& password, int rol)
{
    amb1().execute(QStringLiteral(
                       "INSERT INTO Empleados (nombre_empleado, apellido_empleado, "
                       "direccion_empleado, fecha_nacimiento, rol, usuario, Password) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?)"),
                   {QStringLiteral("Ana María"), QStringLiteral("Zelaya"),
                    QStringLiteral("Col. Kennedy"), QDate(2020, 3, 2), rol, usuario, password});
    return amb1().lastInsertId().toInt();
}

QString passwordOf(int code)
{
    return amb1()
        .scalar(QStringLiteral("SELECT Password FROM Empleados WHERE cod_empleado = ?"), {code})
        .toString();
}

int count(const QString& table)
{
    return amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM ") + table).toInt();
}

// Rows of a table in a copy of the store, read through a connection of its own.
int countInCopy(const QString& file, const QString& table)
{
    int n = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("copia"));
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(QStringLiteral("SELECT COUNT(*) FROM ") + table) && q.next())
                n = q.value(0).toInt();
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("copia"));
    return n;
}

// The screen was asked for: shown modally, or the notice while it isn't built yet.
bool asked(const ScriptedPrompts& sp, const QString& screen)
{
    for (const Prompt& p : sp.prompts) {
        if (p.kind == Prompt::Modal && p.text == screen)
            return true;
        if (p.kind == Prompt::Message && p.text.contains(QLatin1Char('"') + screen + QLatin1Char('"')))
            return true;
    }
    return false;
}

void choose(QComboBox* combo, const QString& name) { combo->setCurrentIndex(combo->findText(name)); }

QString proposedBackupName(const QString& folder)
{
    return QDir(folder).filePath(QStringLiteral("Backup_")
                                 + QDate::currentDate().toString(QStringLiteral("dd_MM_yyyy")));
}

}  // namespace

class TestAccess : public QObject {
    Q_OBJECT

private:
    // Runs one backup through the screen, answering the save dialog with `name`.
    bool runBackup(ScriptedPrompts& sp, const QString& name)
    {
        QWidget* w = openScreen(QStringLiteral("frmBackup"));
        if (!w)
            return false;
        QPointer<QWidget> guard(w);
        sp.files.push_back(name);
        if (!clickNamed(w, QStringLiteral("Command1")))
            return false;
        return QTest::qWaitFor([&] { return guard.isNull(); }, 5000);
    }

private slots:
    void passwordChange()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int ana = addEmployee(QStringLiteral("ana"), QStringLiteral("clave1"), 2);

        QWidget* w = openScreen(QStringLiteral("FcambioContrasena"));
        QVERIFY(w);
        QPointer<QWidget> guard(w);
        for (const char* field : {"Text2", "Text3", "Text4"})
            QCOMPARE(control<QLineEdit>(w, QLatin1String(field))->echoMode(), QLineEdit::Password);
        auto fill = [&](const QString& a, const QString& b, const QString& c, const QString& d) {
            retype(control<QLineEdit>(w, QStringLiteral("Text1")), a);
            retype(control<QLineEdit>(w, QStringLiteral("Text2")), b);
            retype(control<QLineEdit>(w, QStringLiteral("Text3")), c);
            retype(control<QLineEdit>(w, QStringLiteral("Text4")), d);
        };

        // A wrong current password, or the name in other letters, says nothing at all.
        fill(QStringLiteral("ana"), QStringLiteral("clave2"), QStringLiteral("n"), QStringLiteral("n"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        fill(QStringLiteral("Ana"), QStringLiteral("clave1"), QStringLiteral("n"), QStringLiteral("n"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QVERIFY(sp.prompts.isEmpty());
        QCOMPARE(passwordOf(ana), QStringLiteral("clave1"));

        // New password and confirmation differ.
        fill(QStringLiteral("ana"), QStringLiteral("clave1"), QStringLiteral("nueva"),
             QStringLiteral("nueba"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.messages(),
                 QStringList{QStringLiteral("La contraseña no coincide, porfavor vuelva a escribirla")});
        QCOMPARE(sp.prompts.last().icon, Icon::Critical);
        QCOMPARE(passwordOf(ana), QStringLiteral("clave1"));

        // The change, with an apostrophe that must reach the store as typed.
        sp.clear();
        fill(QStringLiteral("ana"), QStringLiteral("clave1"), QStringLiteral("d'ana 7"),
             QStringLiteral("d'ana 7"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.messages(),
                 QStringList{QStringLiteral("Su contraseña ha sido modificada satisfactoriamente")});
        QCOMPARE(passwordOf(ana), QStringLiteral("d'ana 7"));
        QCOMPARE(amb1().scalar(QStringLiteral("SELECT Password FROM Empleados WHERE usuario = ?"),
                               {QStringLiteral("admin")}).toString(),
                 QStringLiteral("admin"));

        // Two rows with the same name and password both change, with one message;
        // a third with the same name and another password keeps its own.
        const int ana2 = addEmployee(QStringLiteral("ana"), QStringLiteral("d'ana 7"), 2);
        const int ana3 = addEmployee(QStringLiteral("ana"), QStringLiteral("propia"), 2);
        sp.clear();
        fill(QStringLiteral("ana"), QStringLiteral("d'ana 7"), QStringLiteral("tercera"),
             QStringLiteral("tercera"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.messages().size(), 1);
        QCOMPARE(passwordOf(ana), QStringLiteral("tercera"));
        QCOMPARE(passwordOf(ana2), QStringLiteral("tercera"));
        QCOMPARE(passwordOf(ana3), QStringLiteral("propia"));

        QVERIFY(clickNamed(w, QStringLiteral("Command2")));
        QTRY_VERIFY(guard.isNull());
    }

    void discountPrompt()
    {
        TempStore store;
        ScriptedPrompts sp;
        addEmployee(QStringLiteral("jefa"), QStringLiteral("secreta"), 1);
        addEmployee(QStringLiteral("jefa"), QStringLiteral("otra"), 1);
        addEmployee(QStringLiteral("cajero"), QStringLiteral("cajero"), 2);
        const QString refusal =
            QStringLiteral("Es necesario una cuenta de Administrador para aplicar descuento o recargo");

        QWidget* w = openScreen(QStringLiteral("Form11"));
        QVERIFY(w);
        QPointer<QWidget> guard(w);
        auto* combo = control<QComboBox>(w, QStringLiteral("Combo1"));
        auto* pass = control<QLineEdit>(w, QStringLiteral("Text1"));
        QVERIFY(combo && pass);
        QCOMPARE(pass->echoMode(), QLineEdit::Password);

        // Administrators only, each name once, nobody chosen; typing picks nothing.
        QStringList names;
        for (int i = 0; i < combo->count(); ++i)
            names << combo->itemText(i);
        names.sort();
        QCOMPARE(names, (QStringList{QStringLiteral("admin"), QStringLiteral("jefa")}));
        QVERIFY(combo->currentText().isEmpty());
        type(combo, QStringLiteral("j"));
        QVERIFY(combo->currentText().isEmpty());

        // Empty name, then empty password: each sends the focus back to the list.
        type(pass, QStringLiteral("x"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.lastMessage(), QStringLiteral("Debe ingresar el Nombre de Usuario"));
        QCOMPARE(w->focusWidget(), combo);
        choose(combo, QStringLiteral("jefa"));
        retype(pass, QString());
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.lastMessage(), QStringLiteral("Debe ingresar la Contrasena"));
        QCOMPARE(w->focusWidget(), combo);

        // Wrong password; a limited user and a vanished name on a stale list.
        sp.clear();
        retype(pass, QStringLiteral("Secreta"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        combo->addItem(QStringLiteral("cajero"));
        choose(combo, QStringLiteral("cajero"));
        retype(pass, QStringLiteral("cajero"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        combo->addItem(QStringLiteral("fantasma"));
        choose(combo, QStringLiteral("fantasma"));
        retype(pass, QStringLiteral("x"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.messages(), (QStringList{refusal, refusal, refusal}));
        QVERIFY(!asked(sp, QStringLiteral("Form10")));
        QVERIFY(w->isVisible());

        // Either password of an administrator name will do; Enter signs.
        sp.clear();
        choose(combo, QStringLiteral("jefa"));
        retype(pass, QStringLiteral("otra"));
        pressKey(pass, Qt::Key_Return);
        QVERIFY(asked(sp, QStringLiteral("Form10")));
        QVERIFY(!sp.messages().contains(refusal));
        QTRY_VERIFY(guard.isNull());
    }

    void correctionGate()
    {
        TempStore store;
        ScriptedPrompts sp;
        state().authorisingAdmin = QStringLiteral("previo");

        QWidget* w = openScreen(QStringLiteral("Form342"));
        QVERIFY(w);
        QPointer<QWidget> guard(w);
        QCOMPARE(w->pos(), QPoint(233, 167));
        auto* combo = control<QComboBox>(w, QStringLiteral("Combo1"));
        auto* pass = control<QLineEdit>(w, QStringLiteral("Text1"));

        // The chosen name is kept whatever comes of the check, even none.
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.lastMessage(), QStringLiteral("Debe ingresar el Nombre de Usuario"));
        QCOMPARE(state().authorisingAdmin, QString());

        choose(combo, QStringLiteral("admin"));
        type(pass, QStringLiteral("mala"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QCOMPARE(sp.lastMessage(), QStringLiteral("Es necesario una cuenta de Administrador para "
                                                  "modificar un formato guardado"));
        QCOMPARE(state().authorisingAdmin, QStringLiteral("admin"));
        QVERIFY(w->isVisible());

        // Success opens the correction list, placed where it always stood.
        std::optional<QPoint> listAt;
        sp.onModal(QStringLiteral("Form37"), [&](QWidget* list) { listAt = list->pos(); });
        retype(pass, QStringLiteral("admin"));
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QVERIFY(asked(sp, QStringLiteral("Form37")));
        if (listAt)
            QCOMPARE(*listAt, QPoint(233, 100));
        QCOMPARE(state().authorisingAdmin, QStringLiteral("admin"));
        QTRY_VERIFY(guard.isNull());
    }

    void backupCopyIsConsistent()
    {
        TempStore store;
        addEmployee(QStringLiteral("uno"), QStringLiteral("1"), 2);
        addEmployee(QStringLiteral("dos"), QStringLiteral("2"), 2);
        const int atCopy = count(QStringLiteral("Empleados"));
        const QString target = QDir(store.folder()).filePath(QStringLiteral("copia.db"));

        BackupResult r = backupStore(target);
        QVERIFY2(r.ok, qPrintable(r.error));
        addEmployee(QStringLiteral("tres"), QStringLiteral("3"), 2);   // the store goes on working
        QCOMPARE(countInCopy(target, QStringLiteral("Empleados")), atCopy);
        QCOMPARE(count(QStringLiteral("Empleados")), atCopy + 1);

        // A second copy under the same name replaces the first; no temporary file stays.
        r = backupStore(target);
        QVERIFY2(r.ok, qPrintable(r.error));
        QCOMPARE(countInCopy(target, QStringLiteral("Empleados")), atCopy + 1);
        const QStringList leftovers =
            QDir(store.folder()).entryList({QStringLiteral(".copia.db*")}, QDir::Files | QDir::Hidden);
        QVERIFY2(leftovers.isEmpty(), qPrintable(leftovers.join(u',')));

        // Failures say why and leave the older copy and the store alone.
        r = backupStore(QDir(store.folder()).filePath(QStringLiteral("no_existe/copia.db")));
        QVERIFY(!r.ok);
        QVERIFY(r.error.contains(QStringLiteral("no existe")));
        r = backupStore(store.dbPath());
        QVERIFY(!r.ok);
        QCOMPARE(count(QStringLiteral("Empleados")), atCopy + 1);
        QCOMPARE(countInCopy(target, QStringLiteral("Empleados")), atCopy + 1);
    }

    void backupScreen()
    {
        TempStore store;
        ScriptedPrompts sp;
        state().currentUser = QStringLiteral("maria");
        const QDate today = QDate::currentDate();
        const QString proposed = proposedBackupName(store.folder());

        QWidget* w = openScreen(QStringLiteral("frmBackup"));
        QVERIFY(w);
        QCOMPARE(control<QLabel>(w, QStringLiteral("Label4"))->text(),
                 QStringLiteral("Cero(0)Respaldos realizados"));
        w->close();

        // The proposed name, taken as it is: the store's suffix is added.
        QVERIFY(runBackup(sp, proposed));
        QCOMPARE(sp.prompts.first().kind, Prompt::SaveFile);
        QCOMPARE(sp.prompts.first().text, proposed);
        QCOMPARE(sp.messages(), QStringList{QStringLiteral("Su base de Datos se respaldo exitosamente")});
        QVERIFY(QFile::exists(proposed + QStringLiteral(".db")));
        QCOMPARE(count(QStringLiteral("respaldos")), 1);
        QCOMPARE(amb1().scalar(QStringLiteral("SELECT usuario FROM respaldos")).toString(),
                 QStringLiteral("maria"));
        QCOMPARE(parseDate(amb1().scalar(QStringLiteral("SELECT fecha_res FROM respaldos"))
                               .toString().left(10)),
                 today);

        // Same name the same day: the second copy replaces the first, two rows.
        addEmployee(QStringLiteral("despues"), QStringLiteral("x"), 2);
        QVERIFY(runBackup(sp, proposed));
        QCOMPARE(countInCopy(proposed + QStringLiteral(".db"), QStringLiteral("Empleados")),
                 count(QStringLiteral("Empleados")));
        QCOMPARE(count(QStringLiteral("respaldos")), 2);

        // A name typed with the suffix gets it once more.
        const QString typed = QDir(store.folder()).filePath(QStringLiteral("copia.db"));
        QVERIFY(runBackup(sp, typed));
        QVERIFY(QFile::exists(typed + QStringLiteral(".db")));
        QVERIFY(!QFile::exists(typed));

        // The label shows the last row by id, not the latest date.
        w = openScreen(QStringLiteral("frmBackup"));
        QCOMPARE(control<QLabel>(w, QStringLiteral("Label4"))->text(), dateLong(today));
        w->close();
        amb1().execute(QStringLiteral("INSERT INTO respaldos (fecha_res, usuario) VALUES (?, ?)"),
                       {QDate(2020, 1, 15), QStringLiteral("maria")});
        w = openScreen(QStringLiteral("frmBackup"));
        QCOMPARE(control<QLabel>(w, QStringLiteral("Label4"))->text(), QStringLiteral("15/01/2020"));
        w->close();
    }

    void backupCancelledOrFailed()
    {
        TempStore store;
        ScriptedPrompts sp;

        // A cancelled dialog writes nothing and leaves the screen ready.
        QWidget* w = openScreen(QStringLiteral("frmBackup"));
        QVERIFY(w);
        QVERIFY(clickNamed(w, QStringLiteral("Command1")));
        QTest::qWait(1500);
        QVERIFY(w->isVisible());
        QVERIFY(sp.messages().isEmpty());
        QCOMPARE(control<QProgressBar>(w, QStringLiteral("ProgressBar1"))->value(), 0);
        QCOMPARE(count(QStringLiteral("respaldos")), 0);
        w->close();

        // A copy that can't be made: the success text as always, then the truth.
        const QString target = QDir(store.folder()).filePath(QStringLiteral("no_existe/copia"));
        QVERIFY(runBackup(sp, target));
        const QStringList said = sp.messages();
        QCOMPARE(said.size(), 2);
        QCOMPARE(said.at(0), QStringLiteral("Su base de Datos se respaldo exitosamente"));
        QVERIFY(said.at(1).startsWith(QStringLiteral("ATENCION: la copia de respaldo NO se pudo crear en ")));
        QVERIFY(said.at(1).contains(QStringLiteral("no_existe")));
        QCOMPARE(sp.prompts.last().icon, Icon::Critical);
        QCOMPARE(count(QStringLiteral("respaldos")), 1);
        QVERIFY(!QFile::exists(target + QStringLiteral(".db")));
        QFile log(QDir(store.folder()).filePath(QStringLiteral("tarvenquil.log")));
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().contains("no_existe"));
    }
};

QTEST_MAIN(TestAccess)
#include "test_access.moc"
