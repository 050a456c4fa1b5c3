// The port named "Demo": a simulated handheld with demo content inside the program. It answers like the direct
// interface or like the one with the text prompt, as the line settings at opening ask for.
#pragma once

#include "sim/sim_port.h"

namespace hr::sim
{

class DemoPort : public SimPort
{
public:
    /// The handheld's flash is kept in this file, made at the first open(); when it cannot be written, the handheld
    /// lives in memory only.
    DemoPort(Events &clock, QString imageFile);

protected:
    void prepareOpen(const QString &settings) override;

private:
    QString image;
    bool filled = false;
};

} // namespace hr::sim
