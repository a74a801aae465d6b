# Asks the tool itself, so that the completion is always that of the tool.
. <(kiroctl completion bash)
