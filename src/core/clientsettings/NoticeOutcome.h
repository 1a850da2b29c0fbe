#pragma once

namespace sable {

// What became of the change notice that follows a confirmed settings dialog. The settings are
// written before the notice is sent and stay written either way; only the window tells the user.
enum class NoticeOutcome
{
    Sent,
    SendFailed,
};

} // namespace sable
