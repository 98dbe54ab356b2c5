// The exam catalogue, the exam picker and an insurer's price list, as their
// screens load them. The screens are built once; only their loading is timed.
#include "bare.h"
#include "bench.h"

#include "registers/exams/FBuscarArticulo.h"
#include "registers/exams/Form6.h"
#include "registers/insurers/FSegurosPrecios.h"
#include "registers/insurers/pricelist.h"

namespace bench {

namespace {

class ExamScreen : public Form6 {
public:
    qint64 open()
    {
        loadTypes();
        loadGrid();
        return 1;
    }
    qint64 keystroke(const QString& text) { return searchExams(text); }
};

class ExamPicker : public FBuscarArticulo {
public:
    ExamPicker(std::int32_t insurer) : FBuscarArticulo(tq::ExamCaller::Invoice, insurer) {}
    qint64 reload() { return loadList(); }
};

class PriceListScreen : public FSegurosPrecios {
public:
    qint64 choose(std::int32_t insurer) { return loadInsurerList(insurer); }
};

}  // namespace

void addExamPaths(Bench& bench, const Context& c)
{
    // The insurer with the longest list.
    Stmt longest(c.bare, "SELECT cod_seguro FROM RelSeguroPrecios GROUP BY cod_seguro "
                         "ORDER BY COUNT(*) DESC, cod_seguro LIMIT 1");
    int insurer = 0;
    while (longest.next())
        insurer = longest.columnInt(0);
    const QString listSql = tq::insurerPriceListSql() + QStringLiteral("ORDER BY Examenes.examen");

    bench.add({.name = QStringLiteral("exam catalogue opening (Form6)"),
               .run = [] {
                   static ExamScreen* screen = new ExamScreen;
                   return screen->open();
               },
               .floor = [c] {
                   Stmt(c.bare, "SELECT * FROM TipoExamen ORDER BY cod_tipo_examen").readAll();
                   Stmt(c.bare, "SELECT * FROM Examenes ORDER BY examen LIMIT 100").readAll();
                   return qint64(1);
               },
               .note = QStringLiteral("the exam types and the first 100 exams by name")});

    bench.add({.name = QStringLiteral("exam search, one keystroke (Form6)"),
               .run = [] {
                   static ExamScreen* screen = new ExamScreen;
                   return screen->keystroke(QStringLiteral("ma"));
               },
               .floor = [c] {
                   return Stmt(c.bare, "SELECT * FROM Examenes WHERE examen LIKE ? "
                                       "ORDER BY examen LIMIT 100")
                       .readAll("%ma%");
               }});

    bench.add({.name = QStringLiteral("exam picker, insured patient (FBuscarArticulo)"),
               .run = [insurer] {
                   static ExamPicker* picker = new ExamPicker(insurer);
                   return picker->reload();
               },
               .floor = [c, listSql, insurer] { return Stmt(c.bare, listSql).readAll(insurer); },
               .note = QStringLiteral("the insurer with the longest price list")});

    bench.add({.name = QStringLiteral("exam picker, uninsured patient (FBuscarArticulo)"),
               .run = [] {
                   static ExamPicker* picker = new ExamPicker(0);
                   return picker->reload();
               },
               .floor = [c] {
                   return Stmt(c.bare, "SELECT * FROM Examenes ORDER BY examen").readAll();
               }});

    bench.add({.name = QStringLiteral("insurer chosen, its price list (FSegurosPrecios)"),
               .run = [insurer] {
                   static PriceListScreen* screen = new PriceListScreen;
                   return screen->choose(insurer);
               },
               .floor = [c, listSql, insurer] { return Stmt(c.bare, listSql).readAll(insurer); }});
}

}  // namespace bench
