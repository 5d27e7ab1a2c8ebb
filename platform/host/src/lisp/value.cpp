// SPDX-License-Identifier: MIT
#include "value.h"

#include "error.h"

namespace lm::host::lisp {

namespace {

std::size_t functionBytes(std::size_t variables) {
    return sizeof(Function) + variables * sizeof(Symbol*);
}

/// Lets a value go that stands in a dead object. An object that dies with it joins the queue, so that lists
/// of any depth are released without recursion.
void letGo(Value& value, Object*& dead) noexcept {
    if (!value.isCounted()) return;
    Object* object = value.detach();
    if (--object->count != 0) return;
    object->nextDead = dead;
    dead = object;
}

} // namespace

void Value::destroy(Object* object) noexcept {
    // All that one value reaches lies on one heap.
    Heap& heap = *object->heap;
    object->nextDead = nullptr;
    Object* dead = object;
    while (dead != nullptr) {
        Object* at = dead;
        dead = at->nextDead;
        switch (at->type) {
        case Type::kCons: {
            Cons* link = static_cast<Cons*>(at);
            letGo(link->car, dead);
            letGo(link->cdr, dead);
            heap.discharge(sizeof(Cons));
            delete link;
            break;
        }
        case Type::kText: {
            Text* text = static_cast<Text*>(at);
            heap.discharge(sizeof(Text) + text->units.size() * sizeof(WideChar));
            delete text;
            break;
        }
        case Type::kFunction: {
            Function* function = static_cast<Function*>(at);
            letGo(function->body, dead);
            heap.discharge(functionBytes(function->variables.size()));
            delete function;
            break;
        }
        default: {
            Foreign* foreign = static_cast<Foreign*>(at);
            heap.discharge(foreign->bytes());
            delete foreign;
            break;
        }
        }
    }
}

Value Heap::text(WideString units) {
    charge(sizeof(Text) + units.size() * sizeof(WideChar));
    return Value::adopt(new Text(*this, std::move(units)));
}

Value Heap::function(Symbol* name, std::vector<Symbol*> variables, std::size_t arguments, Value body) {
    charge(functionBytes(variables.size()));
    Function* made = new Function(*this);
    made->name = name;
    made->variables = std::move(variables);
    made->arguments = arguments;
    made->body = std::move(body);
    return Value::adopt(made);
}

void Heap::exhausted() {
    throw LispError("memory ceiling reached");
}

} // namespace lm::host::lisp
