#pragma once
// "Pantalla Edicion de Examenes": the exam catalogue, with its two list
// prices, delivery time and whether the exam enters the result work.
#include "foundation/ui/register_screen.h"

#include <memory>

namespace Ui {
class Form6;
}

class Form6 : public tq::RegisterScreen {
    Q_OBJECT
public:
    explicit Form6(QWidget* parent = nullptr);
    ~Form6() override;

protected:
    void loadGrid() override;
    void showRow(int row) override;
    std::optional<tq::Refusal> validate(int mode) override;
    QVariant saveAdd() override;
    void saveModify() override;
    void deleteSelected() override;
    bool canDelete() override;
    QVariant codeAt(int row) const override;
    int currentRow() const override;
    int selectRowWithCode(const QVariant& code) override;
    QString deleteQuestion() const override;
    QString deleteQuestionTitle() const override;
    QString addedMessage() const override;
    QString modifiedMessage() const override;
    QString deletedMessage() const override { return {}; }

    // The exams whose name holds `text` anywhere, the first 100 by name.
    // Returns the rows shown.
    int searchExams(const QString& text);
    // The exam types of Combo1, keeping the chosen one.
    void loadTypes();

private:
    int fillGrid(const QString& sql, const QVariantList& binds);
    void openTypes();

    std::unique_ptr<Ui::Form6> ui;
};
