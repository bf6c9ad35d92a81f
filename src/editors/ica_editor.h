#pragma once
// The ICA editor's kind (type "ICA", its binding table and flag word column), for the
// tests that run every editor's binding table.
#include "editors/editor_save.h"

extern const editor_kind ica_kind;
