// Lines of any bytes through the splitter, the sentence parser and the decoder.

#include "ZrKit/recording/ZrLineSplitter.h"
#include "ZrKit/records/ZrNmeaDecoder.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    ZrLineSplitter splitter;
    ZrNmeaDecoder decoder;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    for (const QByteArray& line : splitter.Feed(bytes + "\n")) {
        ZrNmeaSentence sentence;
        QString error;
        if (!ZrNmeaSentence::Parse(line, sentence, &error)) {
            if (error.isEmpty())
                std::abort();
            continue;
        }
        for (const ZrDecodedRecord& record : decoder.Decode(sentence)) {
            if (record.payload.isEmpty() || record.format == 0)
                std::abort();
        }
    }
    return 0;
}
