#include "machine/decode.h"

#include "machine/cell_ops.h"

namespace qelkern {

bool fuseSteps = true;
bool fastLoop = true;

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

// A count or offset of cells in bytes, so that the loop adds it to a
// pointer without a multiplication; one out of all proportion becomes one
// that no stack has room for.
intptr_t CountInBytes(intptr_t count) {
    constexpr intptr_t cell = static_cast<intptr_t>(sizeof(VALUE));
    if (count > INT32_MAX) return INTPTR_MAX;
    if (count < INT32_MIN) return INTPTR_MIN;
    return count * cell;
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

namespace {

struct BinaryForms {
    Op plain, loadLit, loadLoad, lit, load, litLoad, loadLoadStore, store, loadLitStore;
};
constexpr BinaryForms binaryForms[] = {
#define QEL_FORMS(name, operation, general)                                                              \
    {Op::name, Op::LoadLit##name, Op::LoadLoad##name, Op::Lit##name, Op::Load##name,           \
     Op::LitLoad##name,                                                                         \
     Op::LoadLoad##name##Store, Op::name##Store, Op::LoadLit##name##Store},
    QEL_BINARY_OPERATIONS(QEL_FORMS)
#undef QEL_FORMS
};

struct RelationForms {
    Op plain, loadLitJump, loadLoadJump, jump, litJump;
};
constexpr RelationForms relationForms[] = {
#define QEL_FORMS(name, operation, general) \
    {Op::name, Op::LoadLit##name##Jump, Op::LoadLoad##name##Jump, Op::name##Jump, Op::Lit##name##Jump},
    QEL_RELATIONS(QEL_FORMS)
#undef QEL_FORMS
};

const BinaryForms* BinaryOf(const Step& step) {
    for (const BinaryForms& forms : binaryForms)
        if (forms.plain == step.plain) return &forms;
    return nullptr;
}

const RelationForms* RelationOf(const Step& step) {
    for (const RelationForms& forms : relationForms)
        if (forms.plain == step.plain) return &forms;
    return nullptr;
}

bool IsLocalLoad(const Step& step) { return step.plain == Op::Load || step.plain == Op::LoadParameter; }
bool IsLocalStore(const Step& step) {
    return step.plain == Op::Store || step.plain == Op::StoreParameter;
}
bool IsLit(const Step& step) {
    return step.plain == Op::LitInt || step.plain == Op::LitDouble || step.plain == Op::LitValue;
}

constexpr Op arithmetic[] = {Op::Plus, Op::Minus, Op::Times, Op::Divide};
constexpr Op arithmeticPairs[] = {
#define QEL_PAIR(first, then) Op::first##then##Store,
    QEL_ARITHMETIC_PAIRS(QEL_PAIR)
#undef QEL_PAIR
};

int ArithmeticIndex(const Step& step) {
    for (int i = 0; i < 4; ++i)
        if (arithmetic[i] == step.plain) return i;
    return -1;
}
bool IsArithmetic(const Step& step) { return ArithmeticIndex(step) >= 0; }
Op ArithmeticPairOf(const Step& first, const Step& then) {
    return arithmeticPairs[ArithmeticIndex(first) * 4 + ArithmeticIndex(then)];
}

// JMP back to the test of a counting loop on the variable that `step` counts:
// the head, fused before, compares it with an integer literal or a bound of
// two. A head at `step` or behind it is not fused yet and does not match.
bool ClosesCountingLoop(const Step& step, const Step& jump, bool up) {
    if (jump.plain != Op::JumpBack) return false;
    const Step& head = *jump.to;
    if (head.first != step.first) return false;
    if (head.op == (up ? Op::LoadBoundLessEqualJump : Op::LoadBoundGreaterEqualJump)) return true;
    return head.op == (up ? Op::LoadLitLessEqualJump : Op::LoadLitGreaterEqualJump) &&
           head.fusedLiteral->type == tagInteger;
}

// The fused form of the sequence from `at`, longest first; false: none.
bool FuseAt(std::vector<Step>& steps, const Instruction* code, int length, int at) {
    auto plain = [&](int k) -> const Step* {
        return at + k < length ? &steps[static_cast<size_t>(at + k)] : nullptr;
    };
    Step& step = steps[static_cast<size_t>(at)];
    step.first = CountInBytes(step.a);
    const Step *s1 = plain(1), *s2 = plain(2), *s3 = plain(3);
    auto literal = [&](int k) { return &code[at + k].value; };
    auto forwardJump = [&](const Step* jump) { return jump && jump->plain == Op::JumpIfZero; };
    const Step *s4 = plain(4), *s5 = plain(5);
    if (IsLocalLoad(step) && s4 && s1->plain == Op::LitInt && s2->plain == Op::LitInt &&
        (s3->plain == Op::Plus || s3->plain == Op::Minus) &&
        (s4->plain == Op::LessEqual || s4->plain == Op::GreaterEqual) && forwardJump(s5)) {
        step.op = s4->plain == Op::LessEqual ? Op::LoadBoundLessEqualJump
                                             : Op::LoadBoundGreaterEqualJump;
        step.second = s3->plain == Op::Plus ? WrapAdd(s1->number, s2->number)
                                            : WrapSub(s1->number, s2->number);
        step.target = s5->to;
        step.delta = s5->delta;
        return true;
    }
    if (IsLocalLoad(step) && s1 && s2) {
        const BinaryForms* binary = BinaryOf(*s2);
        const RelationForms* relation = RelationOf(*s2);
        if ((IsLit(*s1) || IsLocalLoad(*s1)) && binary && s3 && IsLocalStore(*s3)) {
            step.op = IsLit(*s1) ? binary->loadLitStore : binary->loadLoadStore;
            if (IsLit(*s1)) step.fusedLiteral = literal(1);
            else step.second = CountInBytes(s1->a);
            step.store = CountInBytes(s3->a);
            return true;
        }
        if (IsLit(*s1) && s2->plain == Op::StoreIndexed && s2->l <= 0) {
            step.op = Op::LoadLitStoreElement;
            step.fusedLiteral = literal(1);
            step.store = CountInBytes(s2->a);
            return true;
        }
        if ((IsLit(*s1) || IsLocalLoad(*s1)) && relation && forwardJump(s3)) {
            step.op = IsLit(*s1) ? relation->loadLitJump : relation->loadLoadJump;
            if (IsLit(*s1)) step.fusedLiteral = literal(1);
            else step.second = CountInBytes(s1->a);
            step.target = s3->to;
            step.delta = s3->delta;
            return true;
        }
        if ((s1->plain == Op::Increment || s1->plain == Op::Decrement) && IsLocalStore(*s2) &&
            s2->a == step.a) {
            const bool up = s1->plain == Op::Increment;
            step.op = up ? Op::IncrementVariable : Op::DecrementVariable;
            if (s3 && ClosesCountingLoop(step, *s3, up)) {
                const Op head = s3->to->op;
                if (head == Op::LoadBoundLessEqualJump || head == Op::LoadBoundGreaterEqualJump)
                    step.op = up ? Op::CountUpToBound : Op::CountDownToBound;
                else
                    step.op = up ? Op::CountUp : Op::CountDown;
            }
            return true;
        }
        if (IsLit(*s1) && binary) {
            step.op = binary->loadLit;
            step.fusedLiteral = literal(1);
            return true;
        }
        if (IsLocalLoad(*s1) && binary) {
            step.op = binary->loadLoad;
            step.second = CountInBytes(s1->a);
            return true;
        }
    }
    if (!s1) return false;
    if (IsLocalLoad(step) && BinaryOf(*s1)) {
        step.op = BinaryOf(*s1)->load;
        return true;
    }
    if (IsLocalLoad(step) && IsLocalStore(*s1)) {
        step.op = Op::LoadStore;
        step.store = CountInBytes(s1->a);
        return true;
    }
    if (IsLocalLoad(step) && IsLocalLoad(*s1)) {
        step.op = Op::LoadPair;
        step.second = CountInBytes(s1->a);
        return true;
    }
    if (IsLocalLoad(step) && IsLit(*s1)) {
        step.op = Op::LoadLitPair;
        step.fusedLiteral = literal(1);
        return true;
    }
    if (IsLocalLoad(step) && s1->plain == Op::LoadIndexed && s1->l <= 0) {
        step.op = Op::LoadElement;
        step.store = CountInBytes(s1->a);
        return true;
    }
    if (RelationOf(step) && forwardJump(s1)) {
        step.op = RelationOf(step)->jump;
        step.target = s1->to;
        step.delta = s1->delta;
        return true;
    }
    if (IsLit(step) && RelationOf(*s1) && forwardJump(s2)) {
        step.op = RelationOf(*s1)->litJump;
        step.fusedLiteral = literal(0);
        step.target = s2->to;
        step.delta = s2->delta;
        return true;
    }
    if (IsLit(step) && IsLocalLoad(*s1) && s2 && BinaryOf(*s2)) {
        step.op = BinaryOf(*s2)->litLoad;
        step.fusedLiteral = literal(0);
        step.store = CountInBytes(s1->a);
        return true;
    }
    if (IsLit(step) && BinaryOf(*s1)) {
        step.op = BinaryOf(*s1)->lit;
        step.fusedLiteral = literal(0);
        return true;
    }
    if (IsLit(step) && IsLocalStore(*s1)) {
        step.op = Op::LitStore;
        step.fusedLiteral = literal(0);
        step.store = CountInBytes(s1->a);
        return true;
    }
    if (IsArithmetic(step) && s2 && IsArithmetic(*s1) && IsLocalStore(*s2)) {
        step.op = ArithmeticPairOf(step, *s1);
        step.store = CountInBytes(s2->a);
        return true;
    }
    if (BinaryOf(step) && IsLocalStore(*s1)) {
        step.op = BinaryOf(step)->store;
        step.store = CountInBytes(s1->a);
        return true;
    }
    return false;
}

// Every address gets the fused form of the sequence that starts there, so a
// jump into the middle of one finds the fused form of the rest.
void Fuse(std::vector<Step>& steps, const Instruction* code, int length) {
    for (int at = 0; at < length; ++at) FuseAt(steps, code, length, at);
}

}  // namespace

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
            case INT:
                step.op = Op::Enter;
                step.second = CountInBytes(ins.a);
                break;
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
    for (const auto& [at, to] : jumps) {
        steps[at].to = &steps[static_cast<size_t>(to)];
        steps[at].delta = (static_cast<intptr_t>(at) + 1 - to) * static_cast<intptr_t>(sizeof(Step));
    }
    for (Step& step : steps) step.plain = step.op;
    if (fuseSteps) Fuse(steps, code, length);
    return steps;
}

}  // namespace qelkern
