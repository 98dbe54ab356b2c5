// Passwords kept only as hashes, their change, the administrator prompts, the backup.
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/base/apperror.h"
#include "foundation/base/appstate.h"
#include "foundation/base/passwords.h"
#include "foundation/base/values.h"
#include "frame/accesos.h"
#include "maintenance/backup.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>

using namespace tq;
using namespace tq::test;

namespace {

const QString kBackedUp = QStringLiteral("Su base de Datos se respaldo exitosamente");

int employeesInCopy(const QString& file) { return queryCopy(file, "SELECT COUNT(*) FROM Empleados").toInt(); }

// The screen was asked for: shown modally, or the notice while it isn't built yet.
bool asked(const ScriptedPrompts& sp, const QString& screen)
{
    for (const Prompt& p : sp.prompts)
        if ((p.kind == Prompt::Modal && p.text == screen)
            || (p.kind == Prompt::Message && p.text.contains('"' + screen + '"')))
            return true;
    return false;
}

// Chooses a name from the list (none for an empty one), adding it first when
// missing, as on a list gone stale since it was filled.
void choose(QComboBox* combo, const QString& name)
{
    if (!name.isEmpty() && combo->findText(name) < 0)
        combo->addItem(name);
    combo->setCurrentIndex(combo->findText(name));
}

// Runs one backup through the screen, answering the save dialog with `name`.
bool runBackup(ScriptedPrompts& sp, const QString& name)
{
    QPointer<QWidget> w = openScreen("frmBackup");
    sp.files.push_back(name);
    return w && clickNamed(w, "Command1") && QTest::qWaitFor([&] { return w.isNull(); }, 5000);
}

}  // namespace

class TestAccess : public QObject {
    Q_OBJECT

private slots:
    void passwordChange()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int ana = addEmployee("ana", "clave1", 2);
        const int ana2 = addEmployee("ana", "clave1", 2);
        const int ana3 = addEmployee("ana", "propia", 2);
        QPointer<QWidget> w = openScreen("FcambioContrasena");
        auto change = [&](const QStringList& typed) {
            for (int i = 0; i < 4; ++i)
                retype(control<QLineEdit>(w, QStringLiteral("Text%1").arg(i + 1)), typed[i]);
            QVERIFY(clickNamed(w, "Command1"));
        };

        // A wrong current password, or the name in other letters, says nothing at all.
        change({"ana", "clave2", "n", "n"});
        change({"Ana", "clave1", "n", "n"});
        QVERIFY(sp.prompts.isEmpty());
        change({"ana", "clave1", "nueva", "nueba"});
        QCOMPARE(sp.messages(), QStringList{"La contraseña no coincide, porfavor vuelva a escribirla"});
        QVERIFY(hasPassword(ana, "clave1"));

        // Every row with that name and password changes, apostrophe and all;
        // another password keeps its own.
        sp.clear();
        change({"ana", "clave1", "d'ana 7", "d'ana 7"});
        QCOMPARE(sp.messages(), QStringList{"Su contraseña ha sido modificada satisfactoriamente"});
        QVERIFY(hasPassword(ana, "d'ana 7") && hasPassword(ana2, "d'ana 7"));
        QVERIFY(hasPassword(ana3, "propia"));
        w->close();

        // Stored only as its hash (hasPassword holds on either engine): no trace in the file.
        amb1().closeStore();
        if (!onServer()) {
            const QByteArray file = bytesOf(store.dbPath());
            QVERIFY(file.contains("$argon2id$") && !file.contains("d'ana 7"));
        }
    }

    // Salted hashes; a plain text never matches, even itself.
    void passwordHashes()
    {
        const QString a = hashPassword("clave ñ");
        QVERIFY(a != hashPassword("clave ñ") && verifyPassword(a, "clave ñ"));
        QVERIFY(!verifyPassword(a, "clave n") && !verifyPassword("clave ñ", "clave ñ"));
        const QStringList stored{"uno", QString(), hashPassword("0"), hashPassword("8")};
        QVERIFY(verifyAnyPassword(stored, "8"));
        QVERIFY(!verifyAnyPassword(stored, "uno") && !verifyAnyPassword(stored, ""));
    }

    // A store from an earlier version keeps passwords as typed: the first
    // opening hashes them all in one go, and sign-on goes on as before.
    void plainPasswordsHashedOnOpening()
    {
        TempStore store;
        ScriptedPrompts sp;
        const int ana = addEmployee("ana", "x", 2, {1});
        addEmployee("ana", "x", 2, {1});
        const int nula = addEmployee("nula", "x", 2);
        // As the earlier version left them: as typed, empty, or none at all.
        const QString typed = QStringLiteral("Año de Ana 9");
        const auto setPassword = [](const QString& where, const QVariantList& binds) {
            amb1().execute("UPDATE Empleados SET Password = ? WHERE " + where, binds);
        };
        setPassword("usuario = 'admin'", {QStringLiteral("admin")});
        setPassword("cod_empleado = ?", {typed, ana});
        setPassword("usuario = 'ana' AND cod_empleado <> ?", {QStringLiteral(""), ana});
        setPassword("cod_empleado = ?", {QVariant(), nula});
        const auto plainLeft = [] {
            return count("SELECT COUNT(*) FROM Empleados WHERE Password IS NOT NULL "
                         "AND Password NOT LIKE '$argon2id$%'");
        };
        const auto passwordOf = [](int code) {
            return value("SELECT Password FROM Empleados WHERE cod_empleado = ?", {code});
        };
        QCOMPARE(plainLeft(), 3);

        // A failure half-way leaves every password as it was, and says why.
        if (onServer()) {
            amb1().execute("CREATE FUNCTION falla() RETURNS trigger LANGUAGE plpgsql AS "
                           "'BEGIN IF OLD.Password = '''' THEN RAISE EXCEPTION ''disco lleno''; "
                           "END IF; RETURN NEW; END'");
            amb1().execute("CREATE TRIGGER falla BEFORE UPDATE ON Empleados "
                           "FOR EACH ROW EXECUTE FUNCTION falla()");
        } else {
            amb1().execute("CREATE TRIGGER falla BEFORE UPDATE ON Empleados WHEN "
                           "OLD.Password = '' BEGIN SELECT RAISE(ABORT, 'disco lleno'); END");
        }
        amb1().closeStore();
        try {
            store.reopen();
            QFAIL("the store opened with its passwords unprotected");
        } catch (const DbError& e) {
            QCOMPARE(e.message(),
                     QString("No se pudieron proteger las contraseñas de los empleados."));
        }
        QVERIFY(!amb1().isOpen());
        QCOMPARE(store.query("SELECT COUNT(*) FROM Empleados WHERE Password IN ('admin', '" + typed + "', '')")
                     .toInt(), 3);
        store.query(onServer() ? "DROP TRIGGER falla ON Empleados" : "DROP TRIGGER falla");

        store.reopen();
        QCOMPARE(plainLeft(), 0);
        QVERIFY(passwordOf(nula).isNull());
        const QVariant hashed = passwordOf(ana);
        amb1().closeStore();
        // Not a trace of the old text in the file, free pages included.
        if (!onServer())
            QVERIFY(!bytesOf(store.dbPath()).contains(typed.toUtf8()));

        // Opened again, nothing is hashed twice, and every sign-on still works.
        store.reopen();
        QCOMPARE(passwordOf(ana), hashed);
        QCOMPARE(checkSignOn("admin", "admin").outcome, SignOnOutcome::Granted);
        QCOMPARE(checkSignOn("ana", typed).matches, 1);
        QCOMPARE(checkSignOn("ana", "").matches, 1);
        QCOMPARE(checkSignOn("ana", typed.toLower()).outcome, SignOnOutcome::WrongPassword);
    }

    void adminPrompts_data()
    {
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QString>("next");
        const QString need = QStringLiteral("Es necesario una cuenta de Administrador para ");
        QTest::newRow("descuento") << "Form11" << need + "aplicar descuento o recargo" << "Form10";
        QTest::newRow("corrección")
            << "Form342" << need + "modificar un formato guardado" << "Form37";
    }

    // Only an administrator's name and password lead on; Form342 keeps the
    // chosen name as the authorising administrator whatever comes of the check.
    void adminPrompts()
    {
        QFETCH(QString, screen);
        QFETCH(QString, refusal);
        QFETCH(QString, next);
        TempStore store;
        ScriptedPrompts sp;
        addEmployee("jefa", "secreta", 1);
        addEmployee("jefa", "otra", 1);
        addEmployee("cajero", "cajero", 2);
        const bool keepsName = screen == "Form342";
        state().authorisingAdmin = "previo";
        QPointer<QWidget> w = openScreen(screen);
        auto* combo = control<QComboBox>(w, "Combo1");
        auto* pass = control<QLineEdit>(w, "Text1");
        auto attempt = [&](const QString& name, const QString& password) {
            choose(combo, name);
            retype(pass, password);
            QVERIFY(clickNamed(w, "Command1"));
            if (keepsName)
                QCOMPARE(state().authorisingAdmin, name);
        };

        // Administrators only, each name once.
        QCOMPARE(combo->count(), 2);
        QVERIFY(combo->findText("jefa") >= 0 && combo->findText("cajero") < 0);

        attempt("", "x");
        QCOMPARE(sp.lastMessage(), QString("Debe ingresar el Nombre de Usuario"));
        attempt("jefa", "");
        QCOMPARE(sp.lastMessage(), QString("Debe ingresar la Contrasena"));

        // Wrong password; a limited user and a vanished name on a stale list.
        sp.clear();
        attempt("jefa", "Secreta");
        attempt("cajero", "cajero");
        attempt("fantasma", "x");
        QCOMPARE(sp.messages(), QStringList({refusal, refusal, refusal}));
        QVERIFY(!asked(sp, next) && w->isVisible());

        // Either password of an administrator name will do; Enter signs.
        sp.clear();
        choose(combo, "jefa");
        retype(pass, "otra");
        pressKey(pass, Qt::Key_Return);
        QVERIFY(asked(sp, next) && !sp.messages().contains(refusal));
        QCOMPARE(state().authorisingAdmin, QString(keepsName ? "jefa" : "previo"));
        QTRY_VERIFY(w.isNull());
    }

    // A backup copies the store as it stands and records who made it; one that
    // can't be made is owned up to after the usual text, and logged.
    void backup()
    {
        TempStore store;
        ScriptedPrompts sp;
        state().currentUser = "maria";
        const QDate today = QDate::currentDate();
        const QString proposed = QDir(store.folder()).filePath("Backup_" + today.toString("dd_MM_yyyy"));

        // None made yet; a cancelled dialog writes nothing and leaves the screen ready.
        QWidget* w = openScreen("frmBackup");
        QCOMPARE(control<QLabel>(w, "Label4")->text(), QString("Cero(0)Respaldos realizados"));
        QVERIFY(clickNamed(w, "Command1"));
        QTest::qWait(1500);
        QVERIFY(w->isVisible() && sp.messages().isEmpty());
        QCOMPARE(rowsIn("respaldos"), 0);
        w->close();

        // The proposed name, taken as it is: the store's suffix is added.
        sp.clear();
        QVERIFY(runBackup(sp, proposed));
        QCOMPARE(sp.prompts.first().text, proposed);
        QCOMPARE(sp.messages(), QStringList{kBackedUp});
        QCOMPARE(value("SELECT usuario FROM respaldos").toString(), QString("maria"));
        // The copy holds the rows of its moment; the same name again replaces it.
        const int atCopy = rowsIn("Empleados");
        addEmployee("despues", "x", 2);
        QCOMPARE(employeesInCopy(proposed + ".db"), atCopy);
        QVERIFY(runBackup(sp, proposed));
        QCOMPARE(employeesInCopy(proposed + ".db"), atCopy + 1);

        // The date of the last one is shown. Closed while the bar still runs: the
        // copy exists, so it is told and recorded.
        sp.clear();
        w = openScreen("frmBackup");
        QCOMPARE(control<QLabel>(w, "Label4")->text(), dateLong(today));
        sp.files = {QDir(store.folder()).filePath("apurado")};
        QVERIFY(clickNamed(w, "Command1"));
        w->close();
        QCOMPARE(sp.messages(), QStringList{kBackedUp});
        QCOMPARE(rowsIn("respaldos"), 3);

        // A copy that can't be made: the success text as always, then the truth.
        sp.clear();
        QVERIFY(runBackup(sp, QDir(store.folder()).filePath("no_existe/copia")));
        QCOMPARE(sp.messages().size(), 2);
        QVERIFY(sp.lastMessage().startsWith("ATENCION: la copia de respaldo NO se pudo crear en "));
        QVERIFY(bytesOf(QDir(store.folder()).filePath("tarvenquil.log")).contains("no_existe"));

        // The store file is never copied onto itself.
        if (!onServer())
            QVERIFY(!backupStore(store.dbPath()).ok);
        QCOMPARE(rowsIn("Empleados"), atCopy + 1);
    }
};

QTEST_MAIN(TestAccess)
#include "test_access.moc"
