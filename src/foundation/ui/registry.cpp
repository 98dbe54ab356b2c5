#include "foundation/ui/registry.h"

#include "foundation/ui/placement.h"
#include "foundation/ui/prompt.h"

#include <QMap>
#include <QPointer>
#include <QScopeGuard>
#include <QWidget>

namespace tq {

struct ScreenRegistry::Impl {
    QMap<QString, ScreenFactory> factories;
    struct Family {
        std::function<QStringList()> names;
        std::function<QWidget*(const QString&, QWidget*)> make;
    };
    QList<Family> families;

    const Family* familyOf(const QString& name) const
    {
        for (const Family& f : families)
            if (f.names().contains(name))
                return &f;
        return nullptr;
    }
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

void ScreenRegistry::addFamily(std::function<QStringList()> names,
                               std::function<QWidget*(const QString&, QWidget*)> make)
{
    d()->families.append({std::move(names), std::move(make)});
}

bool ScreenRegistry::has(const QString& name) const
{
    return d()->factories.contains(name) || d()->familyOf(name);
}

QWidget* ScreenRegistry::create(const QString& name, QWidget* parent) const
{
    QWidget* w = nullptr;
    if (const auto it = d()->factories.constFind(name); it != d()->factories.constEnd())
        w = (*it)(parent);
    else if (const Impl::Family* f = d()->familyOf(name))
        w = f->make(name, parent);
    else
        return nullptr;
    if (w && w->objectName().isEmpty())
        w->setObjectName(name);
    placeWhenShown(w);
    return w;
}

QStringList ScreenRegistry::names() const
{
    QStringList out = d()->factories.keys();
    for (const Impl::Family& f : d()->families)
        for (const QString& n : f.names())
            if (!out.contains(n))
                out << n;
    return out;
}

void handOver(QWidget* from, const std::function<void()>& next)
{
    from->hide();
    const QPointer<QWidget> closing(from);
    const auto closeAfter = qScopeGuard([&closing] {
        if (closing)
            closing->close();
    });
    next();
}

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
