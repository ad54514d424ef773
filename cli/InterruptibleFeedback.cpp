#include "cli/InterruptibleFeedback.h"

namespace zarvi {

volatile std::sig_atomic_t InterruptibleFeedback::s_interrupted = 0;

InterruptibleFeedback::InterruptibleFeedback()
{
    s_interrupted = 0;
    std::signal(SIGINT, onInterrupt);
}

InterruptibleFeedback::~InterruptibleFeedback()
{
    std::signal(SIGINT, SIG_IGN);
}

void InterruptibleFeedback::onInterrupt(int)
{
    s_interrupted = 1;
}

} // namespace zarvi
