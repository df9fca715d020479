#include "machine/decode.h"

#include "machine/cell_ops.h"

namespace qelkern {

namespace {

Op OperationStep(intptr_t operation) {
    switch (operation) {
        case oprRet: return Op::Return;
        case oprNegate: return Op::Negate;
        case oprPlus: return Op::Plus;
        case oprMinus: return Op::Minus;
        case oprTimes: return Op::Times;
        case oprDivide: return Op::Divide;
        case oprEqual: return Op::Equal;
        case oprNotEqual: return Op::NotEqual;
        case oprLess: return Op::Less;
        case oprGreaterEqual: return Op::GreaterEqual;
        case oprGreater: return Op::Greater;
        case oprLessEqual: return Op::LessEqual;
        case oprReadInt: return Op::ReadInt;
        case oprWrite: return Op::Write;
        case oprDecrement: return Op::Decrement;
        case oprIncrement: return Op::Increment;
        case oprIntCast: return Op::IntCast;
        case oprDoubleCast: return Op::DoubleCast;
        case oprReadDouble: return Op::ReadDouble;
        case oprBitOr: return Op::BitOr;
        case oprBitAnd: return Op::BitAnd;
        case oprBitNot: return Op::BitNot;
        case oprOr: return Op::Or;
        case oprAnd: return Op::And;
        case oprNot: return Op::Not;
        default: return Op::Nothing;
    }
}

// The code that Decode looks at: up to the last slot that is not a LIT of an
// untagged value. The generator fills the store from address 0, and behind
// the code it holds default instructions, such LITs, which LeaveCode carries
// out without their being decoded. Address 0 always runs, whatever it holds.
}  // namespace

int UsedLength(const CInterpreter& m) {
    int length = m.codeCapacity;
    while (length > 1 && m.code[length - 1].f == LIT && m.code[length - 1].value.type == 0)
        --length;
    return length;
}

// Steps 0 to length - 1 stand for the instructions at the same addresses.
// Step `length` and those behind it are OutOfCode steps: the first is reached
// by running off the end, the others by jumps that leave the code. So the
// loop never tests an address; it is looked at only when such a step is
// reached, where the machine would look at it.
std::vector<Step> Decode(const Instruction* code, int length) {
    std::vector<Step> steps(static_cast<size_t>(length) + 1);
    std::vector<std::pair<size_t, intptr_t>> jumps;  // step, index of its target
    auto target = [&](intptr_t a) -> intptr_t {
        const int address = ToAddress(a);
        if (address > 0 && address < length) return address;
        Step leave{};
        leave.op = Op::OutOfCode;
        leave.a = address;
        steps.push_back(leave);
        return static_cast<intptr_t>(steps.size() - 1);
    };
    for (int at = 0; at < length; ++at) {
        const Instruction& ins = code[at];
        Step step{};
        step.l = ins.l;
        step.a = ins.a;
        switch (ins.f) {
            case LIT:
                if (ins.value.type == tagInteger) {
                    step.op = Op::LitInt;
                    step.number = ins.value.intValue;
                } else if (ins.value.type == tagDouble) {
                    step.op = Op::LitDouble;
                    step.real = ins.value.doubleValue;
                } else {
                    step.op = Op::LitValue;
                    step.literal = &ins.value;
                }
                break;
            case OPR:
                step.op = OperationStep(ins.a);
                step.ins = &ins;
                break;
            // A level difference below 0 follows no link, as 0 does.
            case LOD:
                step.op = ins.l > 0 ? Op::LoadOuter : ins.a >= 0 ? Op::Load : Op::LoadParameter;
                break;
            case STO:
                step.op = ins.l > 0 ? Op::StoreOuter : ins.a >= 0 ? Op::Store : Op::StoreParameter;
                break;
            case INT: step.op = Op::Enter; break;
            case CALL:
            case JMP:
            case JPC: {
                const intptr_t to = target(ins.a);
                const bool back = to <= at;
                if (ins.f == CALL) step.op = Op::Call;
                else if (ins.f == JMP) step.op = back ? Op::JumpBack : Op::Jump;
                else step.op = back ? Op::JumpBackIfZero : Op::JumpIfZero;
                jumps.emplace_back(static_cast<size_t>(at), to);
                break;
            }
            case LODI: step.op = Op::LoadIndexed; break;
            case STOI: step.op = Op::StoreIndexed; break;
            case SWAP: step.op = Op::Swap; break;
            case EXTCALL: step.op = Op::External; step.ins = &ins; break;
            default: step.op = Op::Nothing; break;
        }
        steps[static_cast<size_t>(at)] = step;
    }
    Step& end = steps[static_cast<size_t>(length)];
    end.op = Op::OutOfCode;
    end.a = length;
    // Only now do the steps stay where they are.
    for (const auto& [at, to] : jumps) steps[at].to = &steps[static_cast<size_t>(to)];
    return steps;
}

}  // namespace qelkern
