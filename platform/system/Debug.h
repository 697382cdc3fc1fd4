// The one call that writes text to the debug output.
//
// Threads: any. The sink runs on the writing thread, under no lock of the
// caller that it could need; it must not throw.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Platform::Debug {

using Sink = std::function<void(std::string_view)>;

// Writes `strText` as it stands (line feeds are the caller's) to the sink.
void OutputDebugString(std::string_view strText);

// Replaces the sink and returns the one before. An empty sink drops all text,
// which is the state at start.
Sink SetSink(Sink fnSink);

}
