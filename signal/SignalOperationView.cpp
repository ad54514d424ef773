#include "signal/SignalOperationView.h"

#include "signal/SignalFileReader.h"

namespace zarvi {

void SignalOperationView::datasetsChanged()
{
    m_sampleRate =
        datapaths().isEmpty() ? 0.0 : SignalFileReader::sampleRate(filepath(), datapaths().first());
    m_sampleCount =
        datapaths().isEmpty() ? 0 : SignalFileReader::sampleCount(filepath(), datapaths().first());
}

} // namespace zarvi
