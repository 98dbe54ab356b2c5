#pragma once
// "Parametros de resultados": the catalogue of the measured items of the
// result sheets, each with its unit and its normal values by population.
#include "foundation/ui/register_screen.h"

#include <memory>

namespace Ui {
class mparametros;
}

class mparametros : public tq::RegisterScreen {
    Q_OBJECT
public:
    explicit mparametros(QWidget* parent = nullptr);
    ~mparametros() override;

protected:
    void loadGrid() override;
    void showRow(int row) override;
    std::optional<tq::Refusal> validate(int mode) override;
    QVariant saveAdd() override;
    void saveModify() override;
    bool canDelete() override;
    void deleteSelected() override;
    void afterDelete() override;
    void editStarted(int mode) override;
    QString codeColumn() const override { return QStringLiteral("cod_parametro"); }
    QString emptyListMessage() const override;
    QString deleteQuestion() const override;
    QString addedMessage() const override;
    QString modifiedMessage() const override;
    QString deletedMessage() const override;

private:
    // The normal values of the fields, one row per population typed.
    void writeNormalValues(std::int32_t code);

    std::unique_ptr<Ui::mparametros> ui;
};
