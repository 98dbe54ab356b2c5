#include "foundation/ui/registry.h"

#include "foundation/ui/prompt.h"

#include <QMap>
#include <QWidget>

namespace tq {

struct ScreenRegistry::Impl {
    QMap<QString, ScreenFactory> factories;
};

ScreenRegistry::Impl* ScreenRegistry::d()
{
    static Impl impl;
    return &impl;
}

const ScreenRegistry::Impl* ScreenRegistry::d() const
{
    return const_cast<ScreenRegistry*>(this)->d();
}

ScreenRegistry& ScreenRegistry::instance()
{
    static ScreenRegistry r;
    return r;
}

bool ScreenRegistry::add(const QString& name, ScreenFactory factory)
{
    d()->factories.insert(name, std::move(factory));
    return true;
}

bool ScreenRegistry::has(const QString& name) const { return d()->factories.contains(name); }

QWidget* ScreenRegistry::create(const QString& name, QWidget* parent) const
{
    const auto it = d()->factories.constFind(name);
    if (it == d()->factories.constEnd())
        return nullptr;
    QWidget* w = (*it)(parent);
    if (w && w->objectName().isEmpty())
        w->setObjectName(name);
    return w;
}

QStringList ScreenRegistry::names() const { return d()->factories.keys(); }

void notBuiltNotice(const QString& name)
{
    prompts().message(
        QStringLiteral("La pantalla \"%1\" todavía no está disponible en esta versión del "
                       "sistema.")
            .arg(name),
        Icon::Information);
}

void openModal(const QString& name, const std::function<void(QWidget*)>& prepare)
{
    QWidget* w = ScreenRegistry::instance().create(name, nullptr);
    if (!w) {
        notBuiltNotice(name);
        return;
    }
    if (prepare)
        prepare(w);
    prompts().showModal(w);
}

}  // namespace tq
