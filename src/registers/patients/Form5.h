#pragma once
// "Pantalla de Edicion de Pacientes": the patients of the laboratory, with
// their insurer and the switch "Evaluar como adulto" that billing and the
// normal values of results read.
//
// "Estado" hands the patient to the result history FHistorial: the screen gets
// the properties cod_paciente (int), nombre ("Nombre Apellido"), sexo,
// direccion and edad (the age as shown), and its labels Label9, Label3, Label5
// and Label7, where it has them, are filled with the same texts.
#include "foundation/ui/register_screen.h"

#include <cstdint>
#include <memory>

namespace Ui {
class Form5;
}

namespace tq {
class FlexGrid;
}

class Form5 : public tq::RegisterScreen {
    Q_OBJECT
public:
    explicit Form5(QWidget* parent = nullptr);
    ~Form5() override;

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
    void editStarted(int mode) override;
    QString deleteQuestion() const override;
    QString deletedMessage() const override;
    void afterSave(int mode, const QVariant& newCode) override;
    void afterDelete() override;

private:
    // Fills Grid1 from the list query, narrowed by `condition` (bound to `pattern`).
    void fillGrid(const QString& condition = {}, const QString& pattern = {});
    void search();
    void showFirstRow();
    void fillInsurers();
    void calculoedad();
    void estado();
    // The insurer the save would write, as Combo1 reads: "0 Sin Seguro" without one.
    QString insurerText() const;
    QList<QVariant> rowValues() const;

    std::unique_ptr<Ui::Form5> ui;
    QString m_insurerAtModify;   // Combo1 as it stood when modifying began
};
