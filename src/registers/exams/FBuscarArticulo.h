#pragma once
// "Busqueda de Examenes": the exam picker of the invoice and the order. A
// patient with an insurer is offered only the exams of his insurer's list,
// at its prices; anyone else every exam at its list price.
#include "registers/pickers.h"

#include <QWidget>
#include <functional>
#include <memory>

namespace Ui {
class FBuscarArticulo;
}

class FBuscarArticulo : public QWidget {
    Q_OBJECT
public:
    explicit FBuscarArticulo(QWidget* parent = nullptr)
        : FBuscarArticulo(tq::ExamCaller::Invoice, 0, parent) {}
    FBuscarArticulo(tq::ExamCaller caller, std::int32_t insurer, QWidget* parent = nullptr);
    ~FBuscarArticulo() override;

    tq::ExamCaller caller() const { return m_caller; }
    // The title over the list: whose prices it lists.
    void setTitle(const QString& title);
    // Called with the row the user chose, just before the picker closes.
    void setOnChosen(std::function<void(const tq::ChosenExam&)> f) { m_onChosen = std::move(f); }

protected:
    // The whole list for the patient (his insurer's, or every exam); rows shown.
    int loadList();
    // The search of Text1 by code or by description, as the options say; rows shown.
    int search(const QString& text);

private:
    int fill(const QString& sql, const QVariantList& binds);
    void choose(int row);

    std::unique_ptr<Ui::FBuscarArticulo> ui;
    tq::ExamCaller m_caller;
    std::int32_t m_insurer;
    std::function<void(const tq::ChosenExam&)> m_onChosen;
};
