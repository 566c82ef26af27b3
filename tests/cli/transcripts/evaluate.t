# vel evaluate: values of real-valued function nodes in both modes, as text
# and as JSON, and the failures that explain themselves.

$ evaluate {data}/functions/pump.yaml --node Net
> 2.5625

$ evaluate {data}/functions/pump.yaml --node Net --mode inference --format json
> {"node": "Net", "mode": "inference", "value": 2.5625, "error": null}

$ evaluate {data}/functions/pump.yaml --node Flow --mode configured
> 9

$ evaluate {data}/functions/pump.yaml --node Flow --mode configured --format json
> {"node": "Flow", "mode": "configured", "value": 9, "error": null}

$ evaluate {data}/functions/failures.yaml --node ByValue
= 1
! vel: ByValue: error 34 (vel_error_invalid_expression): model without expressions, missing or unfitting expression, value without a state, or operator not applicable to the node

$ evaluate {data}/functions/failures.yaml --node ByValue --mode inference --format json
= 1
> {"node": "ByValue", "mode": "inference", "value": null, "error": {"code": 34, "name": "vel_error_invalid_expression", "node": "ByValue", "message": "model without expressions, missing or unfitting expression, value without a state, or operator not applicable to the node"}}
! vel: ByValue: error 34 (vel_error_invalid_expression): model without expressions, missing or unfitting expression, value without a state, or operator not applicable to the node

$ evaluate {data}/functions/failures.yaml --node Ratio --mode configured
= 1
! vel: Ratio: error 36 (vel_error_division_by_zero): division by zero in a numeric expression

$ evaluate {data}/functions/failures.yaml --node Ratio --mode configured --format json
= 1
> {"node": "Ratio", "mode": "configured", "value": null, "error": {"code": 36, "name": "vel_error_division_by_zero", "node": "Ratio", "message": "division by zero in a numeric expression"}}
! vel: Ratio: error 36 (vel_error_division_by_zero): division by zero in a numeric expression

$ evaluate {data}/functions/failures.yaml --node Unset --mode configured
= 1
! vel: Unset: error 34 (vel_error_invalid_expression): model without expressions, missing or unfitting expression, value without a state, or operator not applicable to the node

$ evaluate {data}/functions/failures.yaml --node Unset --mode configured --format json
= 1
> {"node": "Unset", "mode": "configured", "value": null, "error": {"code": 34, "name": "vel_error_invalid_expression", "node": "Unset", "message": "model without expressions, missing or unfitting expression, value without a state, or operator not applicable to the node"}}
! vel: Unset: error 34 (vel_error_invalid_expression): model without expressions, missing or unfitting expression, value without a state, or operator not applicable to the node

$ evaluate {data}/functions/uncompiled.yaml --node Power
= 1
! vel: Power: error 17 (vel_error_not_compiled): a value from inference is needed but the domain is not compiled; use --propagate, or state results in an inference block

$ evaluate {data}/functions/uncompiled.yaml --node Power --mode inference --format json
= 1
> {"node": "Power", "mode": "inference", "value": null, "error": {"code": 17, "name": "vel_error_not_compiled", "node": "Power", "message": "a value from inference is needed but the domain is not compiled; use --propagate, or state results in an inference block"}}
! vel: Power: error 17 (vel_error_not_compiled): a value from inference is needed but the domain is not compiled; use --propagate, or state results in an inference block

$ evaluate {data}/functions/uncompiled.yaml --node Power --mode configured
> 200

$ evaluate {data}/functions/uncompiled.yaml --node Power --mode configured --format json
> {"node": "Power", "mode": "configured", "value": 200, "error": null}

$ evaluate {data}/functions/uncompiled.yaml --node Load --mode configured
= 1
! vel: Load: error 1 (vel_error_usage): Load is not a real-valued function node

$ evaluate {data}/functions/uncompiled.yaml --node Load --mode configured --format json
= 1
> {"node": "Load", "mode": "configured", "value": null, "error": {"code": 1, "name": "vel_error_usage", "node": "Load", "message": "Load is not a real-valued function node"}}
! vel: Load: error 1 (vel_error_usage): Load is not a real-valued function node

# An unknown node and a file that does not load are usage errors.
$ evaluate {data}/functions/pump.yaml --node Nope --format json
= 2
! vel: {data}/functions/pump.yaml: no node named 'Nope'

$ evaluate {data}/broken.yaml --node X --format json
= 2
> {"node": "X", "mode": "inference", "value": null, "error": {"code": null, "name": "load_error", "node": null, "message": "{data}/broken.yaml:1:1: end of sequence flow not found"}}
! {data}/broken.yaml:1:1: end of sequence flow not found
