"""The pieces of mutate: what can be changed, the one build of all changes, and the trial of each."""
