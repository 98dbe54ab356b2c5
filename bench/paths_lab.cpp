// The work table (Form3view): opening it with the tree of every waiting exam,
// "Actualizar Pendientes" in both views, and a click on a leaf.
#include "bare.h"
#include "bench.h"

#include "lab/worktable/Form3view.h"

#include <QLabel>
#include <QRadioButton>
#include <QTreeWidget>

namespace bench {

namespace {

// The work table's steps as its buttons and its tree run them.
class WorkTable : public Form3view {
public:
    using Form3view::Query;
    using Form3view::sql;

    QTreeWidget* tree() const { return findChild<QTreeWidget*>(QStringLiteral("TreeView1")); }

    // Nodes at `depth` (0 the top): the leaves are at 2 by exam, 1 by patient.
    qint64 nodesAt(int depth) const
    {
        qint64 n = 0;
        for (QTreeWidgetItemIterator it(tree()); *it; ++it) {
            int d = 0;
            for (QTreeWidgetItem* p = (*it)->parent(); p; p = p->parent())
                ++d;
            n += d == depth;
        }
        return n;
    }

    qint64 refresh(bool byPatient)
    {
        findChild<QRadioButton*>(QLatin1String(byPatient ? "Option2" : "Option1"))->setChecked(true);
        actualizarPendientes();
        return tree()->topLevelItemCount();
    }

    // The first leaf of the first exam waiting, in view Examen.
    QTreeWidgetItem* firstLeaf() const
    {
        for (int t = 0; t < tree()->topLevelItemCount(); ++t) {
            QTreeWidgetItem* type = tree()->topLevelItem(t);
            for (int e = 0; e < type->childCount(); ++e)
                if (type->child(e)->childCount() > 0)
                    return type->child(e)->child(0);
        }
        return nullptr;
    }

    qint64 click(QTreeWidgetItem* leaf)
    {
        clickNode(leaf);
        return findChild<QLabel*>(QStringLiteral("Label12"))->text().isEmpty() ? 0 : 1;
    }
};

WorkTable& workTable()
{
    static WorkTable* screen = new WorkTable;
    return *screen;
}

// A screen of its own for the clicks, whose tree is never rebuilt.
WorkTable& clicker()
{
    static WorkTable* screen = new WorkTable;
    return *screen;
}

// The queries of one view, each read whole; what a reader sees is the rows
// of the last (the leaves).
qint64 treeFloor(Connection* db, std::initializer_list<WorkTable::Query> queries)
{
    qint64 rows = 0;
    for (WorkTable::Query q : queries)
        rows = Stmt(db, WorkTable::sql(q)).readAll();
    return rows;
}

}  // namespace

void addLabPaths(Bench& bench, const Context& c)
{
    using Q = WorkTable::Query;
    // The tree holds every waiting exam: its target is 300 ms whatever the floor.
    const Target tree{.ceilingMs = 300.0, .smallFloorMs = 300.0};

    bench.add({.name = QStringLiteral("Form3view opening"),
               .run = [] {
                   auto* screen = new WorkTable;
                   const qint64 leaves = screen->nodesAt(2);
                   delete screen;
                   return leaves;
               },
               .floor = [c] { return treeFloor(c.bare, {Q::Types, Q::ExamNodes, Q::ExamLeaves}); },
               .target = tree,
               .note = QStringLiteral("the screen made with its tree by exam type and exam, one "
                                      "leaf per waiting exam, and closed")});

    bench.add({.name = QStringLiteral("Actualizar Pendientes, vista Examen"),
               .run = [] {
                   workTable().refresh(false);
                   return workTable().nodesAt(2);
               },
               .floor = [c] { return treeFloor(c.bare, {Q::Types, Q::ExamNodes, Q::ExamLeaves}); },
               .target = tree});

    bench.add({.name = QStringLiteral("Actualizar Pendientes, vista Paciente"),
               .run = [] {
                   workTable().refresh(true);
                   return workTable().nodesAt(1);
               },
               .floor = [c] { return treeFloor(c.bare, {Q::PatientNodes, Q::PatientLeaves}); },
               .target = tree});

    bench.add({.name = QStringLiteral("Form3view clic en una hoja"),
               .run = [] { return clicker().click(clicker().firstLeaf()); },
               .floor = [c] {
                   const int correlativo =
                       clicker().firstLeaf()->text(0).section(QLatin1Char(' '), 0, 0).toInt();
                   return Stmt(c.bare, WorkTable::sql(Q::Lookup)).readAll(correlativo);
               },
               .note = QStringLiteral("the waiting exam of a leaf looked up by its correlativo "
                                      "and shown")});
}

}  // namespace bench
