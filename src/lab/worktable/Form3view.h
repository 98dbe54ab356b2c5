#pragma once
// "Llenado de Resultados": the work table. The exams billed and still waiting
// for a result, as a tree by exam type and exam or by patient; the technician
// picks exams of one patient into the grid, chooses a template and opens its
// fill-in sheet.
#include <QWidget>
#include <cstdint>
#include <memory>

class QTreeWidgetItem;

namespace Ui {
class Form3view;
}

class Form3view : public QWidget {
    Q_OBJECT
public:
    explicit Form3view(QWidget* parent = nullptr);
    ~Form3view() override;

protected:
    // "Actualizar Pendientes": the tree rebuilt in the view ticked, collapsed.
    void actualizarPendientes();
    // A click on a node: its leading number looked up as a waiting exam.
    void clickNode(QTreeWidgetItem* item);
    // "Agregar Examen": the exam shown goes to the pick grid.
    void agregarExamen();
    // A template chosen in the list.
    void elegirPlantilla(int index);
    // "Llenar Resultado": the sheet of the template for the exams picked.
    void llenarResultado();
    // "Cancelar": the picks dropped and the tree read again.
    void cancelar();

    bool eventFilter(QObject* watched, QEvent* event) override;

    // The queries of the tree, one per level, and of a click (bound: the
    // correlativo), as the screen runs them.
    enum class Query { Types, ExamNodes, ExamLeaves, PatientNodes, PatientLeaves, Lookup };
    static QString sql(Query query);

private:
    void buildByExam();
    void buildByPatient();
    void clearDetail();
    void resetGrid();
    void loadTemplates();
    void showSample(int code);

    std::unique_ptr<Ui::Form3view> ui;
    // The invoice the detail showed before the last click (0 after Cancelar).
    std::int32_t m_facturaAnterior = 0;
    // The node whose exam the detail shows: it leaves the tree when picked.
    QTreeWidgetItem* m_shownNode = nullptr;
};
