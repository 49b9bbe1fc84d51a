#include "platform/ProgramOutput.h"

#include "platform/SupervisedChild.h"

namespace vantry {

std::optional<std::string> programOutput(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments, std::size_t limit,
                                         Deadline deadline, int highestStatus) {
    if (hasPassed(deadline))
        return std::nullopt;
    auto child = SupervisedChild::start(program, arguments, ChildOutput::pipe);
    return child ? child->outputToEnd(limit, deadline, highestStatus) : std::nullopt;
}

} // namespace vantry
