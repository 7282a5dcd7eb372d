// The precompiled header needs a target with a source.
