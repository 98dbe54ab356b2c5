#pragma once
// The voiding box: one invoice, shown beside it on screen, is voided with a
// reason. The invoice row is marked and one of its exams leaves the
// laboratory's work table, both in one save.
#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Form31;
}

class Form31 : public QWidget {
    Q_OBJECT
public:
    explicit Form31(QWidget* parent = nullptr);
    ~Form31() override;

    // Opens the box at the top left for invoice `numero`, and beside it the
    // invoice's copy: the voided one when `anulada`, the plain one otherwise.
    // `canVoid` false disables the void button (the invoice is only looked at).
    static Form31* showInvoice(std::int32_t numero, bool anulada, bool canVoid);

    std::int32_t invoice() const { return m_factura; }
    // The copy of the invoice on screen now, if its window is open.
    QWidget* reportWindow() const;

protected:
    void closeEvent(QCloseEvent* event) override;

    void anular();
    // Marks the invoice voided with its reason and today's date, and takes
    // its first waiting exam off the work table, in one transaction.
    void voidInvoice(const QString& motivo);
    void showCopy(bool anulada);

    std::int32_t m_factura = 0;   // the current invoice; 0 when none was given

private:
    std::unique_ptr<Ui::Form31> ui;
    QPointer<QWidget> m_copy;      // DataReport13's window
    QPointer<QWidget> m_voided;    // DataReport15's window
};
