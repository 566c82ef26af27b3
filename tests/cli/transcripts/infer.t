# vel infer, and --propagate for generate and evaluate.  The values are
# derived by hand in the comment of umbrella.yaml.

$ infer {data}/inference/umbrella.yaml
> probability of the evidence: 0.28125
> Rain:  false 0.33333334  true 0.6666667
> Wet:  dry 0  wet 1
> Take:  false 0.5  true 0.5
> Cover:  open 0.3333333  closed 0.6666667
> Sky:  clear 0.33333334  cloudy 0.6666667
> Comfort: expected utility -2.3333333
> clique tables: 14 entries

$ infer {data}/inference/umbrella.yaml --format json
> {"domain": "umbrella", "evidence": {"Wet": "wet"},
>  "probability_of_evidence": 0.28125,
>  "beliefs": [
>    {"node": "Rain", "states": ["false", "true"], "probabilities": [0.33333334, 0.6666667]},
>    {"node": "Wet", "states": ["dry", "wet"], "probabilities": [0, 1]},
>    {"node": "Take", "states": ["false", "true"], "probabilities": [0.5, 0.5]},
>    {"node": "Cover", "states": ["open", "closed"], "probabilities": [0.3333333, 0.6666667]},
>    {"node": "Sky", "states": ["clear", "cloudy"], "probabilities": [0.33333334, 0.6666667]}],
>  "expected_utilities": [{"node": "Comfort", "value": -2.3333333}], "error": null}

# Max-marginals; Take's tie goes to its first state.  The most probable
# configuration's probability is 1/4 * 3/4 * 1/2 * Cover's float(2/3).
$ infer {data}/inference/umbrella.yaml --max --format json
> {"domain": "umbrella", "evidence": {"Wet": "wet"},
>  "probability_of_evidence": 0.28125,
>  "beliefs": [
>    {"node": "Rain", "states": ["false", "true"], "probabilities": [0.5, 1]},
>    {"node": "Wet", "states": ["dry", "wet"], "probabilities": [0, 1]},
>    {"node": "Take", "states": ["false", "true"], "probabilities": [1, 1]},
>    {"node": "Cover", "states": ["open", "closed"], "probabilities": [0.49999997, 1]},
>    {"node": "Sky", "states": ["clear", "cloudy"], "probabilities": [0.5, 1]}],
>  "expected_utilities": [{"node": "Comfort", "value": -2.3333333}],
>  "configuration": {"Rain": "true", "Wet": "wet", "Take": "false", "Cover": "closed", "Sky": "cloudy"},
>  "probability_of_configuration": 0.06250000186264515, "error": null}

# Evidence from the command line.
$ infer {data}/inference/umbrella.yaml --evidence Sky=clear --evidence Rain=true --format json
= 1
> {"domain": "umbrella", "evidence": {"Rain": "true", "Wet": "wet", "Sky": "clear"},
>  "probability_of_evidence": null,
>  "beliefs": [],
>  "expected_utilities": [], "error": {"code": 4, "name": "vel_error_impossible_evidence", "node": "umbrella", "message": "the evidence Rain = true, Wet = wet, Sky = clear is impossible (probability 0)"}}
! vel: umbrella: error 4 (vel_error_impossible_evidence): the evidence Rain = true, Wet = wet, Sky = clear is impossible (probability 0)

$ infer {data}/inference/umbrella.yaml --evidence Wet=soaked
= 2
! vel: --evidence Wet=soaked: names no state of the node

$ infer {data}/inference/umbrella.yaml --evidence Rain
= 2
! vel: --evidence Rain: is not NODE=STATE

# Without results a table or value that reads them fails, and says how to get
# them; --propagate gets them, but not beside stated results.
$ generate {data}/inference/umbrella.yaml --node Cover --no-log --propagate
> Cover: conditional probability table
>      open     closed
> --------------------
> 0.3333333  0.6666667

$ evaluate {data}/inference/umbrella.yaml --node Chance --propagate
> 0.6666666865348816

$ generate {data}/inference/umbrella.yaml --no-log
= 1
! vel: Cover: error 17 (vel_error_not_compiled): Evaluation of function node Chance failed; use --propagate, or state results in an inference block

$ generate {data}/functions/pump.yaml --node Net --propagate
= 2
! vel: {data}/functions/pump.yaml: --propagate cannot be used with an inference block, which states the results

$ evaluate {data}/functions/pump.yaml --node Net --propagate
= 2
! vel: {data}/functions/pump.yaml: --propagate cannot be used with an inference block, which states the results

$ infer {data}/functions/pump.yaml
= 1
! vel: {data}/functions/pump.yaml: note: the inference block is ignored; infer computes the results
! vel: Speed: error 1 (vel_error_usage): node Speed has neither a table nor a model
