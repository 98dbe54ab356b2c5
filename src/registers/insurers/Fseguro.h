#pragma once
// "Seguros y/o Empresas Afiliadas": the insurers and companies whose
// patients are billed to them. Insurer 0, "Sin Seguro", stands for none and
// can be neither changed nor deleted.
#include "foundation/ui/register_screen.h"

#include <cstdint>
#include <memory>

namespace Ui {
class Fseguro;
}

class Fseguro : public tq::RegisterScreen {
    Q_OBJECT
public:
    explicit Fseguro(QWidget* parent = nullptr);
    ~Fseguro() override;

protected:
    void loadGrid() override;
    void showRow(int row) override;
    std::optional<tq::Refusal> validate(int mode) override;
    QVariant saveAdd() override;
    void saveModify() override;
    void deleteSelected() override;
    bool canModify() override;
    bool canDelete() override;
    void editStarted(int mode) override;
    QString codeColumn() const override { return QStringLiteral("Cod_Seguro"); }
    QString emptyListMessage() const override;
    QString deleteQuestion() const override;
    QString addedMessage() const override;
    QString modifiedMessage() const override;
    QString deletedMessage() const override;

private:
    std::unique_ptr<Ui::Fseguro> ui;
};
