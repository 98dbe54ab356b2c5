// The shared helpers: money text, Val, checked conversions, ages and dates, the screen
// registry, the error boundary and the register screen's own messages.
#include "foundation/data/amb1.h"
#include "foundation/base/native.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/register_screen.h"
#include "foundation/ui/registry.h"
#include "foundation/base/values.h"
#include "maintenance/backup.h"
#include "lab_fixture.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>
#include <cerrno>
#include <limits>
#include <new>

using namespace tq;

namespace {
// A register of exam types whose list and row can be made to fail.
class ProbeRegister : public RegisterScreen {
public:
    bool failList = false;
    bool failRow = false;
    QLineEdit* name = new QLineEdit(this);
    DataGrid* grid = new DataGrid(this);
    RegisterButtons b{button("Agregar"), button("Modificar"), button("Eliminar"),
                      button("Guardar"), button("Cancelar"),  button("Salir")};

    explicit ProbeRegister(const QString& listNoun)
    {
        auto* layout = new QVBoxLayout(this);
        for (QWidget* w : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            layout->addWidget(w);
        setUpRegister(b, {name}, grid, QStringLiteral("el tipo de examen"));
        if (!listNoun.isEmpty())
            setListNoun(listNoun);
    }
    void begin() { start(); }

protected:
    QPushButton* button(const char* text) { return new QPushButton(QString::fromUtf8(text), this); }
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

QString logOf(const test::TempStore& store)
{
    QFile log(QDir(store.folder()).filePath(QStringLiteral("tarvenquil.log")));
    return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
}
bool printingLoaded()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libQt6PrintSupport");
}
}  // namespace

class TestHelpers : public QObject {
    Q_OBJECT
private slots:
    void moneyAndVal()
    {
        const QList<QPair<double, QString>> money_ = {
            {0.0, ".00"},          {0.07, ".07"},           {1234567.891, "1234567.89"},
            {2.675000001, "2.68"}, {-0.5, "-.50"},          {-0.001, ".00"}};
        for (const auto& [amount, text] : money_)
            QCOMPARE(money(amount), text);

        const QList<QPair<QString, double>> val = {
            {"12/5", 12.0},   {"   3.5kg", 3.5}, {"1 500", 1500.0}, {"abc", 0.0}, {"", 0.0},
            {".25", 0.25},    {"1e3", 1000.0},  {"2     Usuario Limitado", 2.0}, {"1,5", 1.0}};
        for (const auto& [text, value] : val)
            QVERIFY2(Val(text) == value, qPrintable(text));
    }

    void codesAreCheckedNotWrapped()
    {
        // Codes and numbers of records hold far past the old 16-bit limit.
        QCOMPARE(toInt32(40000.0), 40000);
        QCOMPARE(toInt32(QStringLiteral("2147483647")), 2147483647);
        QCOMPARE(toInt32(-2147483648.0), std::int32_t(-2147483647 - 1));
        QCOMPARE(toInt32(QStringLiteral("125 Sin Seguro")), 125);
        QCOMPARE(toInt32(QVariant()), 0);
        QCOMPARE(toInt32(2.5), 2);   // half to even, as the classic conversion rounded
        QVERIFY_THROWS_EXCEPTION(AppError, toInt32(QStringLiteral("1e308")));
        QVERIFY_THROWS_EXCEPTION(AppError, toInt32(std::numeric_limits<double>::infinity()));
        try {
            toInt32(QStringLiteral("99999999999"));
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
        QVERIFY(!isNumeric(QStringLiteral("3%")));
        QVERIFY(!isNumeric(QString()));
    }

    void calendarAgesAndDates()
    {
        // Boundaries crossed, not time elapsed.
        QCOMPARE(monthsBetween(QDate(2025, 12, 31), QDate(2026, 1, 1)), 1);
        QCOMPARE(yearsBetween(QDate(2025, 12, 31), QDate(2026, 1, 1)), 1);
        QCOMPARE(yearsBetween(QDate(2026, 1, 1), QDate(2026, 12, 31)), 0);
        QCOMPARE(monthsBetween(QDate(2026, 3, 1), QDate(2026, 1, 31)), -2);

        const QDate today(2026, 11, 22);
        // 35 month boundaries: floating error loses a month, as it always did.
        QCOMPARE(calculoedad(today.addMonths(-35), today).text, QStringLiteral("2 Años 10 meses"));
        // Born on the last day of a month: a month is gained on the first of the next.
        QCOMPARE(calculoedad(QDate(2026, 10, 31), QDate(2026, 11, 1)).text,
                 QStringLiteral("0 Años 1 meses"));

        const QDate d(2026, 3, 7);
        QCOMPARE(dateLong(d), QStringLiteral("07/03/2026"));
        QCOMPARE(dateShort(d), QStringLiteral("07/03/26"));
        QCOMPARE(parseDate(QStringLiteral("07/03/85")), QDate(1985, 3, 7));
        QCOMPARE(parseDate(QStringLiteral("2026-03-07")), d);
        QCOMPARE(parseDate(QStringLiteral("7/3/26 10:15")), d);
        QVERIFY(!parseDate(QStringLiteral("31/02/2026")).isValid());
        // What the store hands back: dates, date-times and ISO text.
        QCOMPARE(storedDate(QVariant(QStringLiteral("2026-03-07T08:30:00.000"))), d);
        QCOMPARE(storedDate(QVariant(QDateTime(d, QTime(23, 59)))), d);
        QCOMPARE(storedDate(QVariant(QStringLiteral("2026-03-07 08:30"))), d);
        for (const char* bad : {"07/03/2026", "2026-03-07x", "2026-3-07", "2026-03-07T08", "2026-03-07T08:30:0",
                                "2026-03-07T08:30:00.", "2026-02-30"})
            QVERIFY2(!storedDate(QVariant(QString::fromLatin1(bad))).isValid(), bad);
    }

    // What the user reads when something fails: whole Spanish sentences; what failed rolled back.
    void failuresReadAsWholeSentences()
    {
        test::TempStore store;
        test::ScriptedPrompts sp;
        // A screen not in the registry is told as not available yet.
        openModal(QStringLiteral("NoExiste"));
        QCOMPARE(sp.messages().size(), 1);
        QVERIFY(sp.lastMessage().contains(QStringLiteral("NoExiste"))
                && sp.lastMessage().contains(QStringLiteral("todavía no está disponible")));

        // A save that fails halfway leaves nothing behind.
        sp.clear();
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
        QVERIFY(sp.lastMessage().startsWith(QStringLiteral("No se pudo guardar el doctor.")));
        QCOMPARE(sp.prompts[0].icon, Icon::Critical);
        QVERIFY(logOf(store).contains(QStringLiteral("TablaQueNoExiste")));

        // A failed action inside another undoes only its own rows; the outer one commits whole.
        sp.clear();
        guarded(QStringLiteral("guardar la factura"), [] {
            const auto add = [](const char* name) {
                amb1().execute(QStringLiteral("INSERT INTO TipoExamen (tipo_examen) VALUES (?)"),
                               {QString::fromUtf8(name)});
            };
            Transaction outer;
            add("Hematologia");
            guarded(QStringLiteral("cobrar"), [&] {
                Transaction inner;
                add("a medias");
                throw AppError(QStringLiteral("pago rechazado"));
            });
            add("Quimica");
            outer.commit();
        });
        QCOMPARE(sp.messages().size(), 1);
        QCOMPARE(test::rowsOf(QStringLiteral("SELECT tipo_examen FROM TipoExamen ORDER BY 1")),
                 QStringList({"Hematologia", "Quimica"}));
        QVERIFY(!amb1().inTransaction());

        // Failures read as whole sentences.
        const int shown = boundaryRecord().shown;
        auto fail = [](auto failure) { return [failure] { throw failure; }; };

        guarded(QStringLiteral("leer los respaldos realizados"), fail(AppError(QStringLiteral("Sin acceso."))));
        QCOMPARE(sp.lastMessage(), QStringLiteral("No se pudieron leer los respaldos realizados.\n\nSin acceso."));

        // The runtime's own words are English: the user reads ours, the log keeps theirs.
        guarded(QStringLiteral("guardar el doctor"), fail(std::runtime_error("disk on fire")));
        QCOMPARE(sp.lastMessage(),
                 QStringLiteral("No se pudo guardar el doctor.\n\nOcurrió un error inesperado. El detalle "
                                "quedó anotado en el archivo tarvenquil.log de la carpeta de datos."));
        QVERIFY(logOf(store).contains(QStringLiteral("disk on fire")));
        guarded(QStringLiteral("guardar el doctor"), fail(std::bad_alloc()));
        QVERIFY(sp.lastMessage().endsWith(QStringLiteral("No hay memoria suficiente para terminar la operación.")));

        // Whole sentences of the caller's own, and what the boundary keeps of all it showed.
        guardedSaying(QStringLiteral("Los datos se guardaron, pero la lista no se pudo mostrar."),
                      fail(AppError(QStringLiteral("Sin acceso."))));
        QCOMPARE(sp.lastMessage(),
                 QStringLiteral("Los datos se guardaron, pero la lista no se pudo mostrar.\n\nSin acceso."));
        QCOMPARE(boundaryRecord().shown - shown, 4);
        QCOMPARE(boundaryRecord().lastMessage, sp.lastMessage());

        // The register screen's own failures: the list by its plural, and a save whose list
        // could not be shown again told as saved, the screen at rest.
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
        QCOMPARE(test::count(QStringLiteral("SELECT COUNT(*) FROM TipoExamen WHERE tipo_examen = ?"),
                             {QStringLiteral("Hematología")}), 1);

        p.failList = false;
        p.begin();
        p.failRow = true;
        test::click(p.b.modify);
        test::click(p.b.cancel);
        QCOMPARE(sp.lastMessage(), QStringLiteral("No se pudo cancelar la edición del tipo de "
                                                  "examen.\n\nLa fila no responde."));

        // The system's reasons for refusing a file reach the user in Spanish: a folder that
        // exists and takes no files, not even from the administrator.
        QCOMPARE(systemProblem(ENOSPC), QStringLiteral("el disco está lleno"));
        QCOMPARE(systemProblem(0), QStringLiteral("el sistema no lo permitió"));
        const BackupResult r = backupStore(QStringLiteral("/proc/respaldo.db"));
        QVERIFY(!r.ok);
        QVERIFY2(r.error.startsWith(QStringLiteral("no se puede escribir en la carpeta (")), qPrintable(r.error));
        QVERIFY(!r.detail.isEmpty() && !r.error.contains(r.detail));
    }

    void dataFolderChoice()
    {
        QTemporaryDir dir;
        const QString arg = QDir(dir.path()).absolutePath();
        qputenv("TARVENQUIL_DATA", QDir(arg).filePath(QStringLiteral("env")).toUtf8());
        QCOMPARE(resolveDataFolder({QStringLiteral("tarvenquil")}), QDir(arg).filePath(QStringLiteral("env")));
        // The command line wins over the environment, in either form.
        QCOMPARE(resolveDataFolder({QStringLiteral("tarvenquil"), QStringLiteral("--data"), arg}), arg);
        QCOMPARE(resolveDataFolder({QStringLiteral("tarvenquil"), QStringLiteral("--data=") + arg}), arg);
        qunsetenv("TARVENQUIL_DATA");
    }

    // Qt's printing libraries come with the print module, the first time something is printed.
    void modulesLoadWhenFirstUsed()
    {
        QVERIFY(!printingLoaded());
        QCOMPARE(loadPrintModule(), QString());
        QVERIFY(printingLoaded());
        QCOMPARE(loadPrintModule(), QString());

        // Nor does the program link SQLite's or libsodium's library: the native module brings them.
        QProcess elf;
        elf.start(QStringLiteral("readelf"),
                  {QStringLiteral("-d"), QStringLiteral(TARVENQUIL_BUILD_DIR "/tarvenquil")});
        QVERIFY(elf.waitForFinished(10000));
        const QByteArray needed = elf.readAllStandardOutput();
        QVERIFY2(needed.contains("libQt6Widgets"), needed.constData());
        QVERIFY(!needed.contains("libsodium") && !needed.contains("libsqlite3"));
        QVERIFY(native::sodium() && native::sqlite());
    }
};

QTEST_MAIN(TestHelpers)
#include "test_helpers.moc"
