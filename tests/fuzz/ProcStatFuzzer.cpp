#include "platform/linux/ProcStat.h"
#include "Property.h"

namespace norvane {
namespace {

std::vector<ProcessorTicks> processorsIn(std::string_view text) {
    std::vector<ProcessorTicks> processors{{7, {1, 2, 3, 4}}};  // left over from an earlier reading
    parseProcessorTicks(text, processors);
    return processors;
}

std::string line(const std::string& name, const CPUTicks& ticks) {
    std::string text = name;
    for (const std::uint64_t column : {ticks.user, ticks.nice, ticks.system, ticks.idle})
        text += ' ' + std::to_string(column);
    return text + '\n';
}

}  // namespace

void check(std::string_view text) {
    const auto machine = parseMachineTicks(text);
    const std::vector<ProcessorTicks> processors = processorsIn(text);
    require(parseMachineTicks(amongUnknownLines(text)) == machine, "unknown lines don't matter");
    require(processorsIn(amongUnknownLines(text)) == processors, "nor for the processors");
    require(processors.size() <= lineCount(text), "a processor has a line of its own");

    std::string printed;
    for (const ProcessorTicks& processor : processors) {
        require(processor.number <= 65535, "numbers of processors have a bound");
        printed += line("cpu" + std::to_string(processor.number), processor.ticks);
    }
    require(!parseMachineTicks(printed), "a processor is not the machine");
    if (machine) printed += line("cpu", *machine);
    require(parseMachineTicks(printed) == machine, "the machine's ticks survive printing");
    require(processorsIn(printed) == processors, "the processors survive printing");
}

}  // namespace norvane
