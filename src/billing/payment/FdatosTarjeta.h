#pragma once
// The card box: the charge number, the card-holder's name and identity of a
// card payment, kept in tq::cardDetails() for the invoice's save. Only its
// own "ok" with every field given marks the details as entered.
#include <QWidget>
#include <memory>

namespace Ui {
class FdatosTarjeta;
}

class FdatosTarjeta : public QWidget {
    Q_OBJECT
public:
    explicit FdatosTarjeta(QWidget* parent = nullptr);
    ~FdatosTarjeta() override;

    // The identity field as it reads with nothing typed.
    static QString emptyIdentity();

private:
    void ok();

    std::unique_ptr<Ui::FdatosTarjeta> ui;
};
