#pragma once

#include <QByteArray>

namespace zelmor::simulation::control {

// The one page of the control interface: plain HTML with its CSS and a
// little JavaScript, built into the binary; it fetches nothing but the
// interface's own resources.
class ControlPage
{
public:
    static QByteArray html();
};

} // namespace zelmor::simulation::control
