#pragma once

#include "ui/dialogs/SpanDialog.h"

namespace orvane {

class FilmFile;

/// "Save Film", which asks for the file, and where ffmpeg is when the operator wants to tell.
/// `parent` owns it; the film goes on when it is closed. All that it is given outlives it.
SpanDialog* filmDialog(FilmFile& film, const Module1& module, const Clock& clock, QWidget* parent);

} // namespace orvane
