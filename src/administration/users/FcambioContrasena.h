#pragma once
// "Cambio de Contraseñas": anyone who knows a user's current password may
// give that user a new one.
#include <QWidget>
#include <memory>

namespace Ui {
class FcambioContrasena;
}

class FcambioContrasena : public QWidget {
    Q_OBJECT
public:
    explicit FcambioContrasena(QWidget* parent = nullptr);
    ~FcambioContrasena() override;

private:
    void cambiar();

    std::unique_ptr<Ui::FcambioContrasena> ui;
};
