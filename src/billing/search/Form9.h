#pragma once
// The invoice search: every invoice with its patient, in one of three column
// orders, narrowed by a day, a patient's name or a number. A click on a row
// shows the invoice's exams (Form12).
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Form9;
}

class Form9 : public QWidget {
    Q_OBJECT
public:
    explicit Form9(QWidget* parent = nullptr);
    ~Form9() override;

protected:
    // "Aplicar Filtro": the list in the order of the option ticked.
    void aplicarFiltro();
    void dateChanged();
    void textChanged();
    void showDetail(int row);
    // The list was scrolled to its last row: more of it is read.
    void readMore();
    // Shows the rows the list holds now, from the top.
    void refill();
    // Narrows the list already loaded by its filter text; a name (a classic
    // pattern) reads the invoices of the patients who bear it first.
    void narrow(const QString& filter, const QString& name = {});
    // Opens the list's query: the loaded order, the patients named, the rows read.
    void reopen();

private:
    std::unique_ptr<Ui::Form9> ui;
    int m_order = 0;      // the option the list was loaded with (1 to 3); 0 before any
    int m_rowsRead = 0;   // rows the list reads at most, now
    QString m_name;       // the name pattern the list was read for; empty for every patient
    bool m_refilling = false;
};
