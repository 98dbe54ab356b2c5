#pragma once
// "Precios  x Seguros": each insurer's own price per exam. Exams go from the
// catalogue (left) to the insurer's list (right) with the two-list mover;
// prices are typed into the list's price cells. A save inserts the rows
// added and overwrites the prices of the others: a list only grows here.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class FSegurosPrecios;
}

namespace tq {
class TwoListMover;
}

class QKeyEvent;

class FSegurosPrecios : public QWidget {
    Q_OBJECT
public:
    explicit FSegurosPrecios(QWidget* parent = nullptr);
    ~FSegurosPrecios() override;

protected:
    // Grid2 emptied and filled with the insurer's list, no row new; rows shown.
    int loadInsurerList(std::int32_t insurer);
    tq::TwoListMover& mover() const { return *m_mover; }

private:
    int loadExams(const QString& sql, const QVariantList& binds);
    void loadInsurers();
    void chooseInsurer();
    void search(const QString& text);
    void priceKey(int row, int col, QKeyEvent* event);
    void save();
    void reset();

    std::unique_ptr<Ui::FSegurosPrecios> ui;
    tq::TwoListMover* m_mover = nullptr;
};
