#include <utility>

#include <command_line/message.h>
#include <record/piece_output.h>

namespace Tool {

void PieceOutputC::Tell(std::string message) {
  if (IsKept()) {
    messages_.push_back(std::move(message));
    return;
  }
  progress_->Wipe();
  Tool::Tell(message);
}

void PieceOutputC::PutTo(PieceOutputC& direct) {
  for (std::string& message : messages_) direct.Tell(std::move(message));
  messages_.clear();
  if (!IsKept() || kept_->size() == 0) return;
  direct.GetBuffer().append(*kept_);
  direct.FlushIfFull();
  kept_->clear();
}

}  // namespace Tool
