// The shared helpers every screen leans on: money text, Val, the checked
// 16-bit conversion, calendar differences and ages, date forms, the screen
// registry, the error boundary and the register screen's own messages.
#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/register_screen.h"
#include "foundation/ui/registry.h"
#include "foundation/base/values.h"
#include "maintenance/backup.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>
#include <cerrno>
#include <limits>
#include <new>

using namespace tq;

namespace {
class ProbeScreen : public QWidget {
public:
    explicit ProbeScreen(QWidget* parent) : QWidget(parent) {}
};

// A register of exam types whose list and row can be made to fail.
class ProbeRegister : public RegisterScreen {
public:
    bool failList = false;
    bool failRow = false;
    QLineEdit* name = new QLineEdit(this);
    DataGrid* grid = new DataGrid(this);
    RegisterButtons b{new QPushButton(QStringLiteral("Agregar"), this),
                      new QPushButton(QStringLiteral("Modificar"), this),
                      new QPushButton(QStringLiteral("Eliminar"), this),
                      new QPushButton(QStringLiteral("Guardar"), this),
                      new QPushButton(QStringLiteral("Cancelar"), this),
                      new QPushButton(QStringLiteral("Salir"), this)};

    explicit ProbeRegister(const QString& listNoun)
    {
        auto* layout = new QVBoxLayout(this);
        for (QWidget* w : {static_cast<QWidget*>(name), static_cast<QWidget*>(grid)})
            layout->addWidget(w);
        for (QAbstractButton* button : {b.add, b.modify, b.remove, b.save, b.cancel, b.exit})
            layout->addWidget(button);
        setUpRegister(b, {name}, grid, QStringLiteral("el tipo de examen"));
        if (!listNoun.isEmpty())
            setListNoun(listNoun);
    }
    void begin() { start(); }

protected:
    void loadGrid() override
    {
        if (failList)
            throw AppError(QStringLiteral("La tabla no responde."));
        m_rs.open(QStringLiteral("SELECT cod_tipo_examen, tipo_examen FROM TipoExamen"));
        grid->bind(m_rs);
    }
    void showRow(int row) override
    {
        if (failRow)
            throw AppError(QStringLiteral("La fila no responde."));
        name->setText(grid->text(row, QStringLiteral("tipo_examen")));
    }
    QVariant saveAdd() override
    {
        return amb1().insert(QStringLiteral("TipoExamen"), {QStringLiteral("tipo_examen")},
                             {name->text()});
    }
    void saveModify() override {}
    void deleteSelected() override {}
    QString codeColumn() const override { return QStringLiteral("cod_tipo_examen"); }

private:
    Recordset m_rs;
};
}  // namespace
TQ_REGISTER_SCREEN(ProbeScreen)

class TestHelpers : public QObject {
    Q_OBJECT
private slots:
    void moneyFormat_data();
    void moneyFormat();
    void valReadsTheLeadingNumber_data();
    void valReadsTheLeadingNumber();
    void codesAreCheckedNotWrapped();
    void calendarDifferencesCountBoundaries();
    void ageKeepsTheClassicTruncation();
    void dateForms();
    void registryCreatesByNameAndOpensModally();
    void unbuiltScreenGetsAnHonestNotice();
    void errorBoundaryRollsBackLogsAndKeepsRunning();
    void failuresReadAsWholeSentences();
    void registerFailuresReadNaturally();
    void fileProblemsInTheUsersWords();
    void dataFolderChoice();
};

void TestHelpers::moneyFormat_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0.0 << ".00";
    QTest::newRow("half") << 0.5 << ".50";
    QTest::newRow("cents") << 0.07 << ".07";
    QTest::newRow("whole") << 150.0 << "150.00";
    QTest::newRow("no thousands separator") << 1234567.891 << "1234567.89";
    QTest::newRow("rounds up") << 2.675000001 << "2.68";
    QTest::newRow("negative below one") << -0.5 << "-.50";
    QTest::newRow("negative zero") << -0.001 << ".00";
    QTest::newRow("negative") << -12.3 << "-12.30";
}

void TestHelpers::moneyFormat()
{
    QFETCH(double, amount);
    QFETCH(QString, text);
    QCOMPARE(money(amount), text);
}

void TestHelpers::valReadsTheLeadingNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("fraction stops at slash") << "12/5" << 12.0;
    QTest::newRow("leading blanks") << "   3.5kg" << 3.5;
    QTest::newRow("inner blanks") << "1 500" << 1500.0;
    QTest::newRow("letters") << "abc" << 0.0;
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("negative") << "-2" << -2.0;
    QTest::newRow("point first") << ".25" << 0.25;
    QTest::newRow("exponent") << "1e3" << 1000.0;
    QTest::newRow("role combo text") << "2     Usuario Limitado" << 2.0;
    QTest::newRow("comma is not a decimal") << "1,5" << 1.0;
}

void TestHelpers::valReadsTheLeadingNumber()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    QCOMPARE(Val(text), value);
}

void TestHelpers::codesAreCheckedNotWrapped()
{
    // Codes and numbers of records hold far past the old 16-bit limit.
    QCOMPARE(toInt32(40000.0), 40000);
    QCOMPARE(toInt32(QStringLiteral("2147483647")), 2147483647);
    QCOMPARE(toInt32(-2147483648.0), std::int32_t(-2147483647 - 1));
    QCOMPARE(toInt32(QStringLiteral("125 Sin Seguro")), 125);
    QCOMPARE(toInt32(QVariant()), 0);
    QCOMPARE(toInt32(QVariant(QStringLiteral("77"))), 77);
    QCOMPARE(toInt32(2.5), 2);   // half to even, as the classic conversion rounded
    QVERIFY_THROWS_EXCEPTION(AppError, toInt32(2147483648.0));
    QVERIFY_THROWS_EXCEPTION(AppError, toInt32(QStringLiteral("99999999999")));
    QVERIFY_THROWS_EXCEPTION(AppError, toInt32(QStringLiteral("1e308")));
    QVERIFY_THROWS_EXCEPTION(AppError, toInt32(std::numeric_limits<double>::infinity()));
    try {
        toInt32(99999999999.0);
        QFAIL("no se rechazó un número de 11 cifras");
    } catch (const AppError& e) {
        QCOMPARE(e.message(), QStringLiteral("El número 99999999999 es demasiado grande: un "
                                             "código o número de registro va de -2147483648 a "
                                             "2147483647."));
    }
    // Switches stay 16-bit, checked the same way.
    QCOMPARE(toInt16(-32768.0), std::int16_t(-32768));
    QVERIFY_THROWS_EXCEPTION(AppError, toInt16(QVariant(40000)));
    QVERIFY(isNumeric(QStringLiteral(" 0.03 ")));
    QVERIFY(isNumeric(QStringLiteral(".5")));
    QVERIFY(!isNumeric(QStringLiteral("3%")));
    QVERIFY(!isNumeric(QStringLiteral("")));
    QVERIFY(!isNumeric(QStringLiteral("abc")));
}

void TestHelpers::calendarDifferencesCountBoundaries()
{
    // One day apart across a year end: one month and one year boundary.
    QCOMPARE(monthsBetween(QDate(2025, 12, 31), QDate(2026, 1, 1)), 1);
    QCOMPARE(yearsBetween(QDate(2025, 12, 31), QDate(2026, 1, 1)), 1);
    // Almost a year within one calendar year: no year boundary.
    QCOMPARE(yearsBetween(QDate(2026, 1, 1), QDate(2026, 12, 31)), 0);
    QCOMPARE(monthsBetween(QDate(2026, 1, 31), QDate(2026, 3, 1)), 2);
    QCOMPARE(monthsBetween(QDate(2026, 3, 1), QDate(2026, 1, 31)), -2);
    QCOMPARE(monthsBetween(QDate(), QDate(2026, 1, 1)), 0);
}

void TestHelpers::ageKeepsTheClassicTruncation()
{
    const QDate today(2026, 11, 22);
    // 35 month boundaries: floating error loses a month, as it always did.
    Age a = calculoedad(today.addMonths(-35), today);
    QCOMPARE(a.years, 2);
    QCOMPARE(a.months, 10);
    QCOMPARE(a.text, QStringLiteral("2 Años 10 meses"));
    a = calculoedad(QDate(1960, 11, 30), today);
    QCOMPARE(a.years, 66);
    QCOMPARE(a.months, 0);
    // Born on the last day of a month: a month is gained on the first of the next.
    a = calculoedad(QDate(2026, 10, 31), QDate(2026, 11, 1));
    QCOMPARE(a.text, QStringLiteral("0 Años 1 meses"));
}

void TestHelpers::dateForms()
{
    const QDate d(2026, 3, 7);
    QCOMPARE(dateLong(d), QStringLiteral("07/03/2026"));
    QCOMPARE(dateShort(d), QStringLiteral("07/03/26"));
    QCOMPARE(parseDate(QStringLiteral("07/03/2026")), d);
    QCOMPARE(parseDate(QStringLiteral("07/03/26")), d);
    QCOMPARE(parseDate(QStringLiteral("07/03/85")), QDate(1985, 3, 7));
    QCOMPARE(parseDate(QStringLiteral("2026-03-07")), d);
    QCOMPARE(parseDate(QStringLiteral("7/3/26 10:15")), d);
    QVERIFY(!parseDate(QStringLiteral("31/02/2026")).isValid());
    // What the store hands back: dates, date-times and ISO text.
    QCOMPARE(storedDate(QVariant(d)), d);
    QCOMPARE(storedDate(QVariant(QStringLiteral("2026-03-07T08:30:00.000"))), d);
    QCOMPARE(storedDate(QVariant(QDateTime(d, QTime(23, 59)))), d);
    QVERIFY(!storedDate(QVariant(QStringLiteral("07/03/2026"))).isValid());
    QVERIFY(!storedDate(QVariant(42)).isValid());
    QVERIFY(!parseDate(QStringLiteral("hoy")).isValid());
}

void TestHelpers::registryCreatesByNameAndOpensModally()
{
    test::ScriptedPrompts sp;
    QVERIFY(ScreenRegistry::instance().has(QStringLiteral("ProbeScreen")));
    QWidget* w = ScreenRegistry::instance().create(QStringLiteral("ProbeScreen"));
    QVERIFY(w);
    QCOMPARE(w->objectName(), QStringLiteral("ProbeScreen"));
    delete w;
    bool prepared = false;
    bool handled = false;
    sp.onModal(QStringLiteral("ProbeScreen"), [&](QWidget* s) {
        handled = s->property("preparado").toBool();
    });
    openModal(QStringLiteral("ProbeScreen"), [&](QWidget* s) {
        prepared = true;
        s->setProperty("preparado", true);
    });
    QVERIFY(prepared);
    QVERIFY(handled);
    QCOMPARE(sp.prompts.size(), 1);
    QCOMPARE(sp.prompts[0].kind, test::Prompt::Modal);
}

void TestHelpers::unbuiltScreenGetsAnHonestNotice()
{
    test::ScriptedPrompts sp;
    QVERIFY(!ScreenRegistry::instance().create(QStringLiteral("NoExiste")));
    openModal(QStringLiteral("NoExiste"));
    QCOMPARE(sp.messages().size(), 1);
    QVERIFY(sp.lastMessage().contains(QStringLiteral("NoExiste")));
    QVERIFY(sp.lastMessage().contains(QStringLiteral("todavía no está disponible")));
}

void TestHelpers::errorBoundaryRollsBackLogsAndKeepsRunning()
{
    test::TempStore store;
    test::ScriptedPrompts sp;
    // A save that fails halfway leaves nothing behind.
    const bool ok = guarded(QStringLiteral("guardar el doctor"), [] {
        amb1().begin();
        amb1().execute(QStringLiteral("INSERT INTO Doctores (Nombre_doctor, Apellido_doctor, "
                                      "porsentaje) VALUES (?, ?, ?)"),
                       {QStringLiteral("Ana"), QStringLiteral("D'Costa"), 5});
        amb1().execute(QStringLiteral("INSERT INTO TablaQueNoExiste VALUES (1)"));
        amb1().commit();
    });
    QVERIFY(!ok);
    QVERIFY(!amb1().inTransaction());
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM Doctores")).toInt(), 0);
    QCOMPARE(sp.messages().size(), 1);
    QVERIFY(sp.lastMessage().startsWith(QStringLiteral("No se pudo guardar el doctor.")));
    QCOMPARE(sp.prompts[0].icon, Icon::Critical);
    QFile log(QDir(store.folder()).filePath(QStringLiteral("tarvenquil.log")));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QVERIFY(QString::fromUtf8(log.readAll()).contains(QStringLiteral("TablaQueNoExiste")));

    // A failed action inside another (a modal screen opened by a save) undoes
    // only its own rows; the outer save goes on and commits whole.
    sp.clear();
    guarded(QStringLiteral("guardar la factura"), [] {
        Transaction outer;
        amb1().execute(QStringLiteral("INSERT INTO TipoExamen (tipo_examen) VALUES (?)"),
                       {QStringLiteral("Hematologia")});
        guarded(QStringLiteral("cobrar"), [] {
            Transaction inner;
            amb1().execute(QStringLiteral("INSERT INTO TipoExamen (tipo_examen) VALUES (?)"),
                           {QStringLiteral("a medias")});
            throw AppError(QStringLiteral("pago rechazado"));
        });
        QVERIFY(amb1().inTransaction());
        amb1().execute(QStringLiteral("INSERT INTO TipoExamen (tipo_examen) VALUES (?)"),
                       {QStringLiteral("Quimica")});
        outer.commit();
    });
    QCOMPARE(sp.messages().size(), 1);
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT group_concat(tipo_examen, ',') FROM "
                                          "(SELECT tipo_examen FROM TipoExamen ORDER BY 1)"))
                 .toString(),
             QStringLiteral("Hematologia,Quimica"));
    QVERIFY(!amb1().inTransaction());

    // An overflow inside a button's action is reported and the program goes on.
    QPushButton b;
    onClick(&b, QStringLiteral("leer el código"), [] { toInt32(99999999999.0); });
    b.click();
    QCOMPARE(sp.messages().size(), 2);
    QVERIFY(sp.lastMessage().contains(QStringLiteral("99999999999")));
    // Apostrophes go in bound and come back intact.
    amb1().execute(QStringLiteral("INSERT INTO Doctores (Nombre_doctor, Apellido_doctor, "
                                  "porsentaje) VALUES (?, ?, ?)"),
                   {QStringLiteral("Ana"), QStringLiteral("D'Costa"), 5});
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT Apellido_doctor FROM Doctores WHERE "
                                          "Apellido_doctor = ?"),
                           {QStringLiteral("D'Costa")})
                 .toString(),
             QStringLiteral("D'Costa"));
}

void TestHelpers::failuresReadAsWholeSentences()
{
    test::TempStore store;
    test::ScriptedPrompts sp;
    const int shown = boundaryRecord().shown;
    auto fail = [](auto failure) { return [failure] { throw failure; }; };

    guarded(QStringLiteral("leer los respaldos realizados"), fail(AppError(QStringLiteral("Sin acceso."))));
    QCOMPARE(sp.lastMessage(), QStringLiteral("No se pudieron leer los respaldos realizados.\n\nSin acceso."));
    guarded(QStringLiteral("cargar la lista de doctores"), fail(AppError(QStringLiteral("Sin acceso."))));
    QCOMPARE(sp.lastMessage(), QStringLiteral("No se pudo cargar la lista de doctores.\n\nSin acceso."));

    // The runtime's own words are English: the user reads ours, the log keeps theirs.
    guarded(QStringLiteral("guardar el doctor"), fail(std::runtime_error("disk on fire")));
    QCOMPARE(sp.lastMessage(),
             QStringLiteral("No se pudo guardar el doctor.\n\nOcurrió un error inesperado. El detalle "
                            "quedó anotado en el archivo tarvenquil.log de la carpeta de datos."));
    guarded(QStringLiteral("guardar el doctor"), fail(std::bad_alloc()));
    QVERIFY(sp.lastMessage().endsWith(QStringLiteral("No hay memoria suficiente para terminar la operación.")));
    QFile log(QDir(store.folder()).filePath(QStringLiteral("tarvenquil.log")));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QVERIFY(QString::fromUtf8(log.readAll()).contains(QStringLiteral("disk on fire")));

    // Whole sentences of the caller's own, and what the boundary keeps of all it showed.
    guardedSaying(QStringLiteral("Los datos se guardaron, pero la lista no se pudo mostrar."),
                  fail(AppError(QStringLiteral("Sin acceso."))));
    QCOMPARE(sp.lastMessage(),
             QStringLiteral("Los datos se guardaron, pero la lista no se pudo mostrar.\n\nSin acceso."));
    QCOMPARE(boundaryRecord().shown - shown, 5);
    QCOMPARE(boundaryRecord().lastMessage, sp.lastMessage());
}

// What the user reads when the register screen's own steps fail: whole
// sentences, "del" and "al" joined, the list named by its plural, and a save
// whose list could not be shown again told as saved, the screen at rest.
void TestHelpers::registerFailuresReadNaturally()
{
    test::TempStore store;
    test::ScriptedPrompts sp;
    {
        ProbeRegister unnamed({});
        unnamed.failList = true;
        unnamed.begin();
        QCOMPARE(sp.lastMessage(),
                 QStringLiteral("No se pudo cargar la lista de registros.\n\nLa tabla no responde."));
    }
    ProbeRegister p(QStringLiteral("tipos de examen"));
    p.begin();
    p.show();
    QVERIFY(QTest::qWaitForWindowExposed(&p));

    test::click(p.b.add);
    test::type(p.name, QStringLiteral("Hematología"));
    p.failList = true;
    test::click(p.b.save);
    QCOMPARE(sp.lastMessage(),
             QStringLiteral("Los datos del tipo de examen se guardaron, pero no se pudo volver a "
                            "mostrar la lista de tipos de examen.\n\nLa tabla no responde."));
    QVERIFY(!p.b.save->isEnabled() && p.b.add->isEnabled() && !p.isEditing());
    test::click(p.b.save);
    QCOMPARE(amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM TipoExamen")).toInt(), 1);

    p.failList = false;
    p.begin();
    p.failRow = true;
    QTest::mouseClick(p.grid->viewport(), Qt::LeftButton, {},
                      p.grid->visualRect(p.grid->model()->index(0, 1)).center());
    QCOMPARE(sp.lastMessage(), QStringLiteral("No se pudieron mostrar los datos del tipo de "
                                              "examen.\n\nLa fila no responde."));
    test::click(p.b.modify);
    test::click(p.b.cancel);
    QCOMPARE(sp.lastMessage(), QStringLiteral("No se pudo cancelar la edición del tipo de "
                                              "examen.\n\nLa fila no responde."));
}

// The system's reasons for refusing a file are English; the user reads them
// in Spanish, the log keeps them.
void TestHelpers::fileProblemsInTheUsersWords()
{
    QCOMPARE(systemProblem(ENOSPC), QStringLiteral("el disco está lleno"));
    QCOMPARE(systemProblem(EACCES), QStringLiteral("no hay permiso para usar ese archivo o esa carpeta"));
    QCOMPARE(systemProblem(0), QStringLiteral("el sistema no lo permitió"));

    // A folder that exists and takes no files, not even from the administrator.
    test::TempStore store;
    const BackupResult r = backupStore(QStringLiteral("/proc/respaldo.db"));
    QVERIFY(!r.ok);
    QVERIFY2(r.error.startsWith(QStringLiteral("no se puede escribir en la carpeta (")), qPrintable(r.error));
    QVERIFY(!r.detail.isEmpty() && !r.error.contains(r.detail));

    // A logo that cannot be written there: the laboratory's data are saved all the same.
    test::ScriptedPrompts sp;
    QWidget* datos = test::openScreen(QStringLiteral("FDatos"));
    QVERIFY(datos);
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString png = QDir(store.folder()).filePath(QStringLiteral("logo nuevo.png"));
    QVERIFY(picture.save(png));
    const QString missing = QDir(store.folder()).filePath(QStringLiteral("no está.png"));
    sp.files = {missing, png};
    QVERIFY(test::clickNamed(datos, QStringLiteral("boton2")));
    QVERIFY(test::clickNamed(datos, QStringLiteral("Command1")));
    QCOMPARE(sp.lastMessage(), QStringLiteral("No se pudo buscar el logo.\n\nEl archivo \"%1\" no existe.")
                                   .arg(missing));
    QVERIFY(test::clickNamed(datos, QStringLiteral("Command1")));
    setDataFolder(QStringLiteral("/proc"));
    QVERIFY(test::clickNamed(datos, QStringLiteral("boton")));
    setDataFolder(store.folder());
    const QString prefix = QStringLiteral("Los datos del laboratorio se guardaron, pero no se pudo "
                                          "copiar el logo: no se pudo escribir \"/proc/logo.jpg\": ");
    QVERIFY2(sp.lastMessage().startsWith(prefix), qPrintable(sp.lastMessage()));
    QCOMPARE(sp.lastMessage().mid(prefix.size()), systemProblem(ENOENT) + QLatin1Char('.'));
    delete datos;
}

void TestHelpers::dataFolderChoice()
{
    QTemporaryDir dir;
    const QString arg = dir.path();
    QCOMPARE(resolveDataFolder({QStringLiteral("tarvenquil"), QStringLiteral("--data"), arg}),
             QDir(arg).absolutePath());
    qputenv("TARVENQUIL_DATA", QDir(arg).filePath(QStringLiteral("env")).toUtf8());
    QCOMPARE(resolveDataFolder({QStringLiteral("tarvenquil")}),
             QDir(arg).filePath(QStringLiteral("env")));
    // The command line wins over the environment.
    QCOMPARE(resolveDataFolder({QStringLiteral("tarvenquil"), QStringLiteral("--data=") + arg}),
             QDir(arg).absolutePath());
    qunsetenv("TARVENQUIL_DATA");
    QVERIFY(!resolveDataFolder({QStringLiteral("tarvenquil")}).isEmpty());
}

QTEST_MAIN(TestHelpers)
#include "test_helpers.moc"
