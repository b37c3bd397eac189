"""The pieces of make-sample-volume: a Mac-like disk, written the same at every run."""
