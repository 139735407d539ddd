#pragma once

class FlowController;

/// Tells in the log what the dictations do, for whoever looks for a fault: states, failures and notices,
/// never what was said.
class FlowLog
{
public:
    /// Follows the controller for its lifetime.
    static void follow(FlowController &flow);
};
