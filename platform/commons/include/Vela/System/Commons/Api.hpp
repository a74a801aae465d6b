#pragma once

/// Marks what libVela.System.Commons.so exports. Everything else in the library is hidden.
#define VELA_COMMONS_API __attribute__((visibility("default")))
